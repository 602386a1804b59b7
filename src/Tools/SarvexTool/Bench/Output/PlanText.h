#pragma once

#include "Tools/SarvexTool/Bench/Core/Plan.h"

#include <string>

namespace Bench {

/// A time in words, in whole seconds, for example "1 h 2 min 3 s".
std::string DurationText(double seconds);

/// What a run of the plan measures and how long it takes, without an end mark.
std::string PlanText(const Plan& plan, double seconds);

/// How many problems there are, for example "no errors, 2 warnings".
std::string ProblemCountsText(std::size_t errors, std::size_t warnings);

} // namespace Bench
