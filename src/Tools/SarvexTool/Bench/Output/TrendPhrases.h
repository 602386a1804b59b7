#pragma once

#include "Tools/SarvexTool/Bench/Core/Trend.h"

#include <string>
#include <vector>

namespace Bench {

/// A trend with what is told beside it. It refers to the values and keeps none of them.
struct NamedTrend {
    const TrendData& data;
    const Trend& trend;
    /// Those of PowersOf.
    std::vector<TrendPower> powers;
    /// The file of the limits; nothing without limits.
    std::optional<std::string> limits;
};

/// What a trend says.
struct TrendConclusion {
    /// "DRIFT", "STEADY" and so on.
    std::string word;
    /// Without end marks; the first one names the station that stands out most. Names are as they
    /// were kept: what shows the texts makes them harmless.
    std::vector<std::string> sentences;
};

TrendConclusion ConclusionOf(const TrendData& data, const Trend& trend);

/// What there is to say of a station, for example "reads 2.00 dB higher since 2026-03-09; 3 of its
/// 10 runs are beyond its control limits".
std::string PhraseOf(const TrendData& data, const StationTrend& station);

/// "DUT-7", "3 devices", or "" where nothing tells any.
std::string DevicesOf(const TrendStation& station);

/// "DUT-7", "several", or "" where nothing tells any.
std::string DeviceOf(const TrendVisit& visit);

/// A number with two digits after the point, and a plus sign where it is wanted; never "-0.00".
std::string Hundredths(double number);
std::string SignedHundredths(double number);

} // namespace Bench
