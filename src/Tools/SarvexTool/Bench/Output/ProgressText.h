#pragma once

#include "Tools/SarvexTool/Bench/Core/RunProgress.h"

#include <string>

namespace Bench {

/// A time as a clock shows it, in whole seconds: "0:37", "1:02:03".
std::string ClockText(double seconds);

/// The progress in one harmless line without its end; what matters most comes first, so that it can
/// be cut. For example "37/400 (9 %), 0:37, about 6:03 left, 3 not measured; line 38: A 12.5 dBm;
/// line 39: Band 5, Channel 42".
std::string ProgressText(const RunProgress& progress);

/// The state, how long it has lasted, and what it waits for or why, harmless: "repeating (0:05): no
/// answer within 60 s".
std::string StateText(const RunState& state);

/// What verdicts there are, for example "35 pass, 1 too low"; without those that occur nowhere, and
/// without what was not measured. Passes are always told.
std::string VerdictsText(const VerdictTotals& verdicts);

} // namespace Bench
