#pragma once

#include "Tools/SarvexTool/Bench/Output/Console.h"
#include "Tools/SarvexTool/Bench/Output/TrendPhrases.h"

namespace Bench {

/// Shows a trend for people: what stands out most in the first line, then a table of the stations,
/// then the powers over time where one configuration and chain is left.
void PrintTrend(const Console& console, const NamedTrend& named);

} // namespace Bench
