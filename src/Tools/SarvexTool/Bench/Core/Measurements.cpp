#include "Tools/SarvexTool/Bench/Core/Measurements.h"

#include <utility>

namespace Bench {

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
    if (cause == Cause::Uncertain)
        return std::string(NameOf(setting)) + " is uncertain since line " + std::to_string(since);
    return "no power was reported";
}

void RunResultBuilder::Reserve(std::size_t rows) {
    m_run.configurations.reserve(rows);
    m_run.measurements.reserve(2 * rows);
}

void RunResultBuilder::Add(const Row& row) {
    m_carried.Write(row.line, row.own);
    m_run.configurations.push_back({row.line, m_carried.Effective()});
    const ExpectedChains chains = ChainsOf(m_carried.Effective()[Setting::Chains]);
    if (chains.AreKnown())
        AddExpected(row, chains);
    else
        AddWhatIsThere(row);
}

void RunResultBuilder::AddExpected(const Row& row, ExpectedChains chains) {
    if (chains.a)
        AddMeasurement(Chain::A, row.powerA);
    if (chains.b)
        AddMeasurement(Chain::B, row.powerB);
    m_run.unexpectedPowers += std::size_t{!chains.a && row.powerA.has_value()} +
                              std::size_t{!chains.b && row.powerB.has_value()};
    m_carried.Judge((chains.a && row.powerA) || (chains.b && row.powerB));
}

void RunResultBuilder::AddWhatIsThere(const Row& row) {
    if (row.powerA)
        AddMeasurement(Chain::A, row.powerA);
    if (row.powerB)
        AddMeasurement(Chain::B, row.powerB);
    const bool hasPower = row.powerA || row.powerB;
    if (!hasPower)
        AddMeasurement(Chain::None, std::nullopt);
    m_carried.Judge(hasPower);
}

void RunResultBuilder::AddMeasurement(Chain chain, const std::optional<Decimal>& power) {
    Measurement measurement;
    measurement.configuration = static_cast<std::uint32_t>(m_run.configurations.size() - 1);
    measurement.chain = chain;
    const CarriedSettings::Uncertain uncertain = m_carried.FirstUncertain();
    if (uncertain.since != 0)
        measurement.reason = {NotMeasured::Cause::Uncertain, uncertain.setting, uncertain.since};
    else
        measurement.power = power;
    m_run.measurements.push_back(measurement);
}

RunResult RunResultBuilder::Take() {
    m_carried = {};
    return std::exchange(m_run, {});
}

} // namespace Bench
