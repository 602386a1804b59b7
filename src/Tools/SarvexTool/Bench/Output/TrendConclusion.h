#pragma once

#include "Tools/SarvexTool/Bench/Core/Trend.h"

#include <string>
#include <vector>

namespace Bench {

/// What a trend says.
struct TrendConclusion {
    /// "DRIFT", "STEADY" and so on.
    std::string word;
    /// Without end marks; the first one names the station that stands out most. Names are as they
    /// were kept: what shows the texts makes them harmless.
    std::vector<std::string> sentences;
};

TrendConclusion ConclusionOf(const TrendData& data, const Trend& trend);

} // namespace Bench
