#include "Tools/SarvexTool/Bench/Output/JsonProgress.h"

#include <cmath>

namespace Bench {

namespace {

/// An object that ends its line with its end.
class EventObject {
public:
    EventObject(std::ostream& stream, const char* event) : m_stream(stream), m_json(stream) {
        m_json.BeginObject();
        m_json.Key("event").Text(event);
    }

    JsonWriter& Json() { return m_json; }

    void Finish() {
        m_json.EndObject();
        m_json.Finish();
        m_stream.flush();
    }

private:
    std::ostream& m_stream;
    JsonWriter m_json;
};

void WriteCounts(JsonWriter& json, const OutcomeCounts& outcomes,
                 const std::optional<VerdictTotals>& verdicts) {
    json.Key("outcomes").BeginObject();
    for (std::size_t index = 0; index < OutcomeCount; ++index) {
        const auto outcome = static_cast<Outcome>(index);
        json.Key(NameOf(outcome)).Count(outcomes.Count(outcome));
    }
    json.EndObject();
    if (!verdicts)
        return;
    json.Key("verdicts").BeginObject();
    for (std::size_t index = 0; index < VerdictCount; ++index)
        json.Key(NameOf(static_cast<Verdict>(index))).Count(verdicts->at(index));
    json.EndObject();
}

/// To the millisecond; more digits would say nothing.
double Rounded(double seconds) {
    constexpr double perSecond = 1000;
    return std::round(seconds * perSecond) / perSecond;
}

void WriteProgress(JsonWriter& json, const RunProgress& progress) {
    json.Key("linesDone").Count(progress.linesDone);
    json.Key("linesTotal").Count(progress.linesTotal);
    json.Key("elapsedSeconds").Number(Rounded(progress.elapsedSeconds));
    json.Key("remainingSeconds");
    if (progress.remainingSeconds)
        json.Number(Rounded(*progress.remainingSeconds));
    else
        json.Null();
    json.Key("state").Text(NameOf(progress.state.kind));
    json.Key("detail").Text(progress.state.detail);
    WriteCounts(json, progress.outcomes, progress.verdicts);
}

void WriteChain(JsonWriter& json, const char* key, const FinishedChain& chain, bool hasVerdicts) {
    json.Key(key).BeginObject();
    json.Key("outcome").Text(NameOf(chain.outcome.outcome));
    json.Key("text").Text(chain.outcome.text);
    json.Key("power");
    if (chain.power)
        json.Number(*chain.power);
    else
        json.Null();
    if (hasVerdicts) {
        json.Key("verdict");
        if (chain.verdict)
            json.Text(NameOf(*chain.verdict));
        else
            json.Null();
    }
    json.EndObject();
}

void WriteLastLine(JsonWriter& json, const LastLine& last, bool hasVerdicts) {
    json.Key("line").Count(last.line);
    json.Key("settings").Text(last.settings);
    json.Key("accepted").Bool(last.isAccepted);
    WriteChain(json, "a", last.a, hasVerdicts);
    WriteChain(json, "b", last.b, hasVerdicts);
}

void WriteSummary(JsonWriter& json, const RunSummary& summary) {
    json.Key("complete").Bool(summary.isComplete);
    json.Key("why").Text(summary.whyEnded);
    json.Key("linesDone").Count(summary.linesDone);
    json.Key("linesTotal").Count(summary.linesTotal);
    WriteCounts(json, summary.outcomes, summary.verdicts);
    json.Key("directory").Text(summary.directory);
    json.Key("notes").BeginArray();
    for (const std::string& note : summary.notes)
        json.Text(note);
    json.EndArray();
    json.Key("stopConfirmed");
    if (summary.hasTransmitted)
        json.Bool(!summary.unconfirmedStop);
    else
        json.Null();
    json.Key("stopProblem").Text(summary.unconfirmedStop.value_or(""));
    json.Key("exitCode").Number(Decimal::FromInteger(summary.exitCode));
}

} // namespace

void JsonProgress::Begin(const RunProgress& progress, TimePoint /*now*/) {
    m_change.Note(progress.state);
    EventObject event(m_stream, "begin");
    WriteProgress(event.Json(), progress);
    event.Finish();
}

void JsonProgress::FinishLine(const RunProgress& progress, TimePoint now) {
    EventObject event(m_stream, "line");
    WriteLastLine(event.Json(), progress.last, progress.verdicts.has_value());
    WriteProgress(event.Json(), progress);
    event.Finish();
    Update(progress, now);
}

void JsonProgress::Update(const RunProgress& progress, TimePoint /*now*/) {
    if (!m_change.Note(progress.state))
        return;
    EventObject event(m_stream, "state");
    WriteProgress(event.Json(), progress);
    event.Finish();
}

void JsonProgress::End(const RunSummary& summary) {
    EventObject event(m_stream, "end");
    WriteSummary(event.Json(), summary);
    event.Finish();
}

} // namespace Bench
