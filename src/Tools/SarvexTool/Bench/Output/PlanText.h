#pragma once

#include "Tools/SarvexTool/Bench/Core/Chunks.h"
#include "Tools/SarvexTool/Bench/Core/Plan.h"

#include <string>
#include <vector>

namespace Bench {

/// A time in words, in whole seconds, for example "1 h 2 min 3 s".
std::string DurationText(double seconds);

/// What a run of the plan measures and how long it takes, without an end mark.
std::string PlanText(const Plan& plan, double seconds);

/// How many chunks of how many lines a plan is cut into, and how long some numbers of benches take
/// for them, without an end mark. There is at least one chunk, and none larger than the first.
std::string ChunksText(const std::vector<LineRange>& chunks, const RunConditions& conditions);

/// How many problems there are, for example "no errors, 2 warnings".
std::string ProblemCountsText(std::size_t errors, std::size_t warnings);

} // namespace Bench
