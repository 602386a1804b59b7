#pragma once

#include "Tools/SarvexTool/Bench/Core/Outcomes.h"
#include "Tools/SarvexTool/Bench/Supervision/Answer.h"
#include "Tools/SarvexTool/Bench/Supervision/DeviceSettings.h"

#include <string_view>

namespace Bench {

/// What became of a line: its row says whether there are powers, the daemon's answer why there are
/// none, or that they are powers of something else. A power beside an error, or of a transmitter
/// that is not calibrated, does not count as measured.
LineOutcome OutcomeOfRow(std::string_view row, const Answer& answer, const OwnSettings& own);

} // namespace Bench
