#pragma once

#include "Tools/SarvexTool/Bench/Core/Trend.h"

#include <vector>

namespace Bench {

/// Counts what each station, in their order, has lost: what the last of its visits that was asked
/// for it has not made. It or another station has made all that is an item.
void CountLost(const TrendData& data, std::vector<StationTrend>& stations);

} // namespace Bench
