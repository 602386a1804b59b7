#pragma once

#include "Tools/SarvexTool/Bench/Core/Trend.h"

#include <vector>

namespace Bench {

/// Counts what each station, in their order, has lost: measurements that it has made before, and
/// that its last visit was asked for and has not made.
void CountLost(const TrendData& data, std::vector<StationTrend>& stations);

} // namespace Bench
