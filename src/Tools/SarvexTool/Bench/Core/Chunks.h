#pragma once

#include "Tools/SarvexTool/Bench/Core/Estimate.h"
#include "Tools/SarvexTool/Bench/Core/LineRange.h"

#include <vector>

namespace Bench {

/// Cuts lines into chunks of at most so many, in as few as that takes. Their sizes differ by at
/// most 1: all lines of a device take the same time. The larger ones come first.
std::vector<LineRange> CutLines(LineRange lines, LineNumber most);

/// How long so many benches take for chunks that one after the other are given to whichever bench
/// is free, in seconds. There is at least one bench.
double EstimateSeconds(const std::vector<LineRange>& chunks, std::size_t benches,
                       const RunConditions& conditions);

} // namespace Bench
