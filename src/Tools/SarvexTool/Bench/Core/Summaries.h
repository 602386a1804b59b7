#pragma once

#include "Tools/SarvexTool/Bench/Core/Verdicts.h"

namespace Bench {

/// How the measurements of one band were judged, or those of all bands.
struct VerdictCounts {
    /// Null where the band is unknown, and for all bands.
    const std::string* band = nullptr;
    std::array<std::size_t, VerdictCount> counts{};
    /// The place in Judgements::all of the smallest margin, the first one of several; nothing where
    /// none has a margin.
    std::optional<std::uint32_t> worst;

    std::size_t Count(Verdict verdict) const { return counts[static_cast<std::size_t>(verdict)]; }
};

/// A run's judgements in few figures.
struct JudgementSummary {
    /// Sorted by band, texts in their byte order, an unknown one first.
    std::vector<VerdictCounts> bands;
    VerdictCounts all;
};

JudgementSummary Summarize(const RunResult& run, const Judgements& judgements);

/// The places in Judgements::all of what did not pass: first what is not measured, then what is out
/// of its limits, the farthest first, then what has no limit; all else in the order of the lines.
std::vector<std::uint32_t> NotPassed(const Judgements& judgements);

} // namespace Bench
