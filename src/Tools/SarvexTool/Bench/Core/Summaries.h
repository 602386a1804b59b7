#pragma once

#include "Tools/SarvexTool/Bench/Core/Verdicts.h"

#include <numeric>
#include <optional>
#include <string>
#include <vector>

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
    std::size_t Total() const {
        return std::accumulate(counts.begin(), counts.end(), std::size_t{0});
    }
};

/// A run's judgements in few figures.
struct JudgementSummary {
    /// Sorted by band, texts in their byte order, an unknown one first.
    std::vector<VerdictCounts> bands;
    VerdictCounts all;
};

JudgementSummary Summarize(const RunResult& run, const Judgements& judgements);

/// How the measurements were judged that have the same bench, device or attempt.
struct PlaceCounts {
    /// Nothing for those of which nothing tells it.
    std::optional<std::string> name;
    VerdictCounts counts;
};

/// Without those that have no measurement, in the order of LineGroups.
std::vector<PlaceCounts> SummarizeBy(PlacePart part, const RunResult& run,
                                     const Judgements& judgements);

/// The places in Judgements::all of what did not pass: first what is not measured, then what is out
/// of its limits, the farthest first, then what has no limit; all else in the order of the lines.
std::vector<std::uint32_t> NotPassed(const Judgements& judgements);

} // namespace Bench
