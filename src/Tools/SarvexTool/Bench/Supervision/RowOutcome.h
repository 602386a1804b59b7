#pragma once

#include "Tools/SarvexTool/Bench/Core/Outcomes.h"
#include "Tools/SarvexTool/Bench/Supervision/Answer.h"
#include "Tools/SarvexTool/Bench/Supervision/DeviceSettings.h"

#include <string_view>

namespace Bench {

/// The last two cells of a row: the powers of chains A and B, or "NA". Parts of the row.
struct RowPowers {
    std::string_view a;
    std::string_view b;
};

RowPowers PowersOf(std::string_view row);

/// What became of a line: its row says whether there are powers, the daemon's answer why there are
/// none, or that they are powers of something else. A power beside an error, or of a transmitter
/// that is not calibrated, does not count as measured.
LineOutcome OutcomeOfRow(std::string_view row, const Answer& answer, const OwnSettings& expected);

} // namespace Bench
