#pragma once

#include "Tools/SarvexTool/Bench/Core/Trend.h"

#include <span>
#include <vector>

namespace Bench {

/// Whether a value is farther from the mean of the others than the next value of the same kind is
/// by chance in 370, as one beyond three standard deviations is. Of few others the spread is known
/// badly, and so the distance is larger. False with fewer than three others.
bool IsFarFrom(double value, std::span<const double> others);

/// Tells which stations are apart, and which are erratic: a third of the differences of
/// neighbouring runs are more than 0.2 dB, and more than four times what a third of those of the
/// others of the group exceed, of which the median counts, or more than five times the lower
/// median.
void CompareWithPeers(std::vector<StationTrend>& stations);

} // namespace Bench
