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

/// What there is to say of a station, for example "reads 2.00 dB higher since 2026-03-09; 3 of its
/// 10 runs are beyond its control limits".
std::string PhraseOf(const TrendData& data, const StationTrend& station);

/// The part of that on its powers.
std::string PhraseOfPowers(const TrendData& data, const StationTrend& station);

/// The part on measurements that it has lost, "has no power for 4 of its 8 measurements in ..."; ""
/// where there are none.
std::string PhraseOfLost(const TrendData& data, const StationTrend& station);

/// The part on runs that differ far more than others'; "" where they do not.
std::string PhraseOfErratic(const StationTrend& station);

/// "DUT-7", "3 devices", or "" where nothing tells any.
std::string DevicesOf(const TrendStation& station);

/// "DUT-7", "several", or "" where nothing tells any.
std::string DeviceOf(const TrendVisit& visit);

/// A number with two digits after the point, and a plus sign where it is wanted; never "-0.00".
std::string Hundredths(double number);
std::string SignedHundredths(double number);

} // namespace Bench
