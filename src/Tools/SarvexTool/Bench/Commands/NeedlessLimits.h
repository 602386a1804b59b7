#pragma once

#include "Tools/SarvexTool/Bench/Core/Limits.h"
#include "Tools/SarvexTool/Bench/Output/Console.h"

#include <string>

namespace Bench {

/// Warns of each limit that has fitted nothing until now. One that is for nothing that was measured
/// is most likely misspelt.
void WarnOfNeedlessLimits(const LimitTable& table, const std::string& name, const Console& err);

} // namespace Bench
