#include "Tools/SarvexTool/Bench/Commands/RunWatch.h"

#include "Tools/SarvexTool/Bench/Core/Verdicts.h"
#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Supervision/RowOutcome.h"

#include <algorithm>
#include <utility>

namespace Bench {

namespace {

constexpr std::size_t mostMissing = 10;

const ChainOutcome& OutcomeOf(const LineOutcome& line, Chain chain) {
    // Where no chain is known, one that is not just inactive tells more.
    const bool isInactive = line.a.outcome == Outcome::ChainNotActive;
    return chain == Chain::B || (chain == Chain::None && isInactive) ? line.b : line.a;
}

} // namespace

RunWatch::RunWatch(IProgress& progress, TextPool& texts, const Judging& judging,
                   std::size_t linesTotal)
    : m_shown(progress), m_texts(texts), m_judging(judging) {
    m_progress.linesTotal = linesTotal;
    if (judging.pLimits != nullptr)
        m_progress.verdicts.emplace();
}

void RunWatch::Begin(double expectedSecondsOfALine) {
    m_pace.expectedSeconds = expectedSecondsOfALine;
    m_start = Clock::now();
    m_stateStart = m_start;
    SetTimes();
    m_shown.Begin(m_progress, Clock::now());
}

void RunWatch::BeginLine(LineNumber line, const OwnSettings& own) {
    m_progress.line = line;
    m_progress.settings = PhraseOf(Kept(own));
    Tick();
}

std::string RunWatch::FinishLine(const FinishedLine& line, const OwnSettings& own) {
    const bool hasPassed = Add(line, own);
    ++m_pace.lines;
    m_progress.line = 0;
    SetTimes();
    m_shown.FinishLine(m_progress, Clock::now());
    const bool isLast = m_progress.linesDone == m_progress.linesTotal;
    if (hasPassed || !m_judging.failFast || isLast)
        return "";
    m_whyFailedFast = "line " + std::to_string(line.line) + " did not pass";
    return m_whyFailedFast;
}

void RunWatch::ShowState(RunState::Kind state, const std::string& detail) {
    if (m_progress.state.kind == state && m_progress.state.detail == detail)
        return;
    const Clock::time_point now = Clock::now();
    if (m_progress.state.kind != RunState::Kind::Measuring)
        m_lost += now - m_stateStart;
    m_stateStart = now;
    m_progress.state = {state, 0, detail};
    Tick();
}

void RunWatch::Tick() {
    SetTimes();
    m_shown.Update(m_progress, Clock::now());
}

bool RunWatch::Add(const FinishedLine& line, const OwnSettings& own) {
    const RowPowers powers = PowersOf(line.row);
    Row row;
    row.line = line.line;
    row.own = Kept(own);
    row.powerA = Decimal::Parse(powers.a);
    row.powerB = Decimal::Parse(powers.b);
    row.journalled = {{line.outcome.a.outcome, m_texts.Keep(line.outcome.a.text)},
                      {line.outcome.b.outcome, m_texts.Keep(line.outcome.b.text)},
                      line.outcome.isAccepted};
    m_builder.Add(row);
    const RunResult result = m_builder.TakeNext();
    const Settings& effective = result.configurations.front().settings;

    ++m_progress.linesDone;
    m_progress.outcomes.Add(line.outcome, ChainsOf(effective[Setting::Chains]));
    m_progress.last = {line.line,
                       PhraseOf(row.own),
                       line.outcome.isAccepted,
                       {line.outcome.a, row.powerA, std::nullopt},
                       {line.outcome.b, row.powerB, std::nullopt}};
    NoteMissing(line, result);
    const bool isMeasured =
        std::all_of(result.measurements.begin(), result.measurements.end(),
                    [](const Measurement& measurement) { return measurement.power.has_value(); });
    return m_judging.pLimits == nullptr ? isMeasured : Judge(result);
}

bool RunWatch::Judge(const RunResult& result) {
    const Judgements judgements = Bench::Judge(result, *m_judging.pLimits);
    for (const Judgement& judgement : judgements.all) {
        ++m_progress.verdicts->at(static_cast<std::size_t>(judgement.verdict));
        const Chain chain = result.measurements[judgement.measurement].chain;
        if (chain != Chain::None)
            (chain == Chain::A ? m_progress.last.a : m_progress.last.b).verdict = judgement.verdict;
    }
    return judgements.HaveAllPassed();
}

void RunWatch::NoteMissing(const FinishedLine& line, const RunResult& result) {
    for (const Measurement& measurement : result.measurements) {
        const ChainOutcome& outcome = OutcomeOf(line.outcome, measurement.chain);
        if (outcome.outcome != Outcome::Measured && m_missing.size() < mostMissing)
            m_missing.push_back({line.line, measurement.chain, outcome});
    }
}

Settings RunWatch::Kept(const OwnSettings& own) {
    Settings settings;
    for (std::size_t index = 0; index < SettingCount; ++index) {
        if (own.at(index))
            settings[static_cast<Setting>(index)] = m_texts.Keep(*own.at(index));
    }
    return settings;
}

void RunWatch::SetTimes() {
    using Seconds = std::chrono::duration<double>;
    const Clock::time_point now = Clock::now();
    const bool isMeasuring = m_progress.state.kind == RunState::Kind::Measuring;
    m_progress.elapsedSeconds = Seconds(now - m_start).count();
    m_progress.state.seconds = Seconds(now - m_stateStart).count();
    m_pace.seconds =
        Seconds(now - m_start - m_lost - (isMeasuring ? Clock::duration() : now - m_stateStart))
            .count();
    m_progress.remainingSeconds =
        EstimateRemaining(m_pace, m_progress.linesTotal - m_progress.linesDone);
}

} // namespace Bench
