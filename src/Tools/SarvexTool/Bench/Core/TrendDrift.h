#pragma once

#include "Tools/SarvexTool/Bench/Core/Trend.h"

#include <span>

namespace Bench {

/// What the runs beyond tell of a station: of those of the points, in the order of time, at least
/// one is marked as beyond the limits, which are the points' own.
///
/// It is a drift where on one side of the mean two runs are beyond, or the last run of all is, or
/// the runs after the one that is have not come back: their median is displaced from that of the
/// runs before it, of which there are at least three, by at least half as much as it is. All else
/// is an outlier, among it a first run that differs from all others. Told is the last time that
/// several runs were displaced, or the last run is. That of the other side is told instead where it
/// is more than twice as large as the last one, and this one smaller than the distance of a limit
/// from the mean; where it ended within the first third of the runs, the last one is held against
/// the runs of neither, and is not told where these are fewer than half as many as its own. Where
/// there was no such time, the last run beyond is told.
Drift DriftOf(std::span<const TrendPoint> points, const ControlLimits& limits);

} // namespace Bench
