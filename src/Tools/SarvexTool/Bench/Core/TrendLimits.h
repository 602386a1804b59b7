#pragma once

#include "Tools/SarvexTool/Bench/Core/Trend.h"

namespace Bench {

/// Gives a station with its points their control limits, where there are enough of them, and tells
/// which points are beyond and what drift these make.
///
/// Lone runs beyond are found by limits of all points, and the limits are then those of all other
/// points, which are held against them once more: one outlier can widen limits many times.
void HoldAgainstOwnLimits(StationTrend& station);

} // namespace Bench
