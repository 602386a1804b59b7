#pragma once

#include "Tools/SarvexTool/Bench/Core/Limits.h"

#include <array>

namespace Bench {

/// What a measurement is worth. All but Pass count as not passed.
enum class Verdict : std::uint8_t { Pass, TooLow, TooHigh, NotMeasured, NoLimit };

inline constexpr std::size_t VerdictCount = 5;

/// "pass", "too low", "too high", "not measured" or "no limit".
const char* NameOf(Verdict verdict);

/// A measurement held against its limit.
struct Judgement {
    /// The place in RunResult::measurements.
    std::uint32_t measurement = 0;
    Verdict verdict = Verdict::NotMeasured;
    /// The first limit that fits, whether there is a power or not; null where there is none.
    const Limit* limit = nullptr;
    /// In dB, to the nearer bound; below 0 outside. Nothing without a power or a bound.
    std::optional<Decimal> margin;
};

/// The judgements of a run, in the order of its measurements.
struct Judgements {
    std::vector<Judgement> all;
    std::array<std::size_t, VerdictCount> counts{};
    /// Such a run has not passed, whatever its measurements.
    bool hasEndedEarly = false;

    std::size_t Count(Verdict verdict) const { return counts[static_cast<std::size_t>(verdict)]; }
    bool HaveAllPassed() const { return !hasEndedEarly && Count(Verdict::Pass) == all.size(); }
};

/// Judges each measurement of a run. The judgements point into the table.
Judgements Judge(const RunResult& run, LimitTable& table);

/// The distance of a power to the nearer bound of a limit, below 0 when it is outside; nothing when
/// the limit has no bound.
std::optional<Decimal> MarginOf(Decimal power, const Limit& limit);

} // namespace Bench
