#include "Tools/SarvexTool/Bench/Core/Verdicts.h"

#include <algorithm>

namespace Bench {

namespace {

Verdict VerdictOf(const Measurement& measurement, const Limit* limit) {
    if (!measurement.power)
        return Verdict::NotMeasured;
    if (limit == nullptr)
        return Verdict::NoLimit;
    if (limit->minimum && *measurement.power < *limit->minimum)
        return Verdict::TooLow;
    if (limit->maximum && *measurement.power > *limit->maximum)
        return Verdict::TooHigh;
    return Verdict::Pass;
}

Judgement JudgeOne(const RunResult& run, std::size_t index, LimitTable& table) {
    const Measurement& measurement = run.measurements[index];
    Judgement judgement;
    judgement.measurement = static_cast<std::uint32_t>(index);
    judgement.limit = table.Find(run.SettingsOf(measurement), measurement.chain);
    judgement.verdict = VerdictOf(measurement, judgement.limit);
    if (measurement.power && judgement.limit != nullptr)
        judgement.margin = MarginOf(*measurement.power, *judgement.limit);
    return judgement;
}

} // namespace

const char* NameOf(Verdict verdict) {
    constexpr std::array<const char*, VerdictCount> names{"pass", "too low", "too high",
                                                          "not measured", "no limit"};
    return names.at(static_cast<std::size_t>(verdict));
}

std::optional<Decimal> MarginOf(Decimal power, const Limit& limit) {
    if (limit.minimum && limit.maximum)
        return std::min(power - *limit.minimum, *limit.maximum - power);
    if (limit.minimum)
        return power - *limit.minimum;
    if (limit.maximum)
        return *limit.maximum - power;
    return std::nullopt;
}

Judgements Judge(const RunResult& run, LimitTable& table) {
    Judgements judgements;
    judgements.all.reserve(run.measurements.size());
    judgements.hasEndedEarly = run.earlyEnd.has_value();
    for (std::size_t index = 0; index < run.measurements.size(); ++index) {
        const Judgement judgement = JudgeOne(run, index, table);
        judgements.all.push_back(judgement);
        ++judgements.counts[static_cast<std::size_t>(judgement.verdict)];
    }
    return judgements;
}

} // namespace Bench
