#include "Tools/SarvexTool/Bench/Core/Measurements.h"

#include <utility>

namespace Bench {

namespace {

/// Why a chain with that outcome has no power that counts.
const char* SentenceOf(Outcome outcome) {
    switch (outcome) {
    case Outcome::Refused:
        return "the daemon refused the line";
    case Outcome::Uncalibrated:
        return "the transmission was not calibrated";
    case Outcome::ChainNotActive:
        return "the chain was not active";
    case Outcome::TimedOut:
        return "no whole answer came in time";
    case Outcome::ConnectionLost:
        return "the connection to the daemon was lost";
    case Outcome::OtherConfiguration:
        return "the power is one of another configuration";
    case Outcome::NotRun:
        return "the line was not run";
    case Outcome::Measured:
        break;
    }
    return "no power was reported";
}

/// What the journal tells of a measurement's chain. Where no chain is known and none gave a power,
/// one that is not just inactive tells more.
const JournalledChain& ChainOf(const JournalledLine& line, Chain chain) {
    const bool isInactive = line.a.outcome == Outcome::ChainNotActive;
    return chain == Chain::B || (chain == Chain::None && isInactive) ? line.b : line.a;
}

std::optional<Decimal> PowerOf(const Row& row, Chain chain) {
    switch (chain) {
    case Chain::A:
        return row.powerA;
    case Chain::B:
        return row.powerB;
    case Chain::None:
        break;
    }
    return std::nullopt;
}

} // namespace

const char* NameOf(Chain chain) {
    switch (chain) {
    case Chain::A:
        return "A";
    case Chain::B:
        return "B";
    case Chain::None:
        break;
    }
    return "?";
}

std::string NotMeasured::ToText() const {
    switch (cause) {
    case Cause::NoPower:
        return "no power was reported";
    case Cause::Uncertain:
        return std::string(NameOf(setting)) + " is uncertain since line " + std::to_string(since);
    case Cause::Journalled:
        break;
    }
    const std::string sentence = SentenceOf(outcome);
    return text == nullptr || text->empty() ? sentence : sentence + ": " + *text;
}

const char* NotMeasured::CauseName() const {
    switch (cause) {
    case Cause::NoPower:
        return "no power";
    case Cause::Uncertain:
        return "uncertain";
    case Cause::Journalled:
        break;
    }
    return NameOf(outcome);
}

std::string EarlyEnd::ToText() const {
    const std::string start = "the run is not complete: " + std::to_string(linesDone);
    const std::string end = linesTotal ? " of " + std::to_string(*linesTotal) : "";
    const bool isOne = linesTotal.value_or(linesDone) == 1;
    return start + end + (isOne ? " line was run" : " lines were run");
}

void RunResultBuilder::Reserve(std::size_t rows) {
    m_run.configurations.reserve(rows);
    m_run.measurements.reserve(2 * rows);
}

void RunResultBuilder::Add(const Row& row) {
    if (row.journalled && row.journalled->isExplicit)
        m_carried.WriteAll(row.line, row.own);
    else
        m_carried.Write(row.line, row.own);
    m_run.configurations.push_back({row.line, m_carried.Effective()});
    const ExpectedChains chains = ChainsOf(m_carried.Effective()[Setting::Chains]);
    const bool hasPower = chains.AreKnown() ? AddExpected(row, chains) : AddWhatIsThere(row);
    m_carried.Judge(row.journalled ? row.journalled->isAccepted : hasPower);
}

bool RunResultBuilder::AddExpected(const Row& row, ExpectedChains chains) {
    if (chains.a)
        AddMeasurement(Chain::A, row);
    if (chains.b)
        AddMeasurement(Chain::B, row);
    m_run.unexpectedPowers += std::size_t{!chains.a && row.powerA.has_value()} +
                              std::size_t{!chains.b && row.powerB.has_value()};
    return (chains.a && row.powerA) || (chains.b && row.powerB);
}

bool RunResultBuilder::AddWhatIsThere(const Row& row) {
    if (row.powerA)
        AddMeasurement(Chain::A, row);
    if (row.powerB)
        AddMeasurement(Chain::B, row);
    const bool hasPower = row.powerA || row.powerB;
    if (!hasPower)
        AddMeasurement(Chain::None, row);
    return hasPower;
}

void RunResultBuilder::AddMeasurement(Chain chain, const Row& row) {
    Measurement measurement;
    measurement.configuration = static_cast<std::uint32_t>(m_run.configurations.size() - 1);
    measurement.chain = chain;
    const CarriedSettings::Uncertain uncertain = m_carried.FirstUncertain();
    const JournalledChain told =
        row.journalled ? ChainOf(*row.journalled, chain) : JournalledChain();
    if (told.outcome != Outcome::Measured) {
        measurement.reason.cause = NotMeasured::Cause::Journalled;
        measurement.reason.outcome = told.outcome;
        measurement.reason.text = told.text;
    } else if (uncertain.since != 0) {
        measurement.reason.cause = NotMeasured::Cause::Uncertain;
        measurement.reason.setting = uncertain.setting;
        measurement.reason.since = uncertain.since;
    } else {
        measurement.power = PowerOf(row, chain);
    }
    m_run.measurements.push_back(measurement);
}

RunResult RunResultBuilder::Take() {
    m_carried = {};
    return TakeNext();
}

RunResult RunResultBuilder::TakeNext() {
    return std::exchange(m_run, {});
}

} // namespace Bench
