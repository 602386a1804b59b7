#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"

#include <optional>
#include <string>

namespace Bench {

/// Whether a run with a journal ended before its last line, as its run.json tells: that has fewer
/// journalled lines than the test file had, or does not tell how many there were and calls the run
/// anything but "complete". A run without a run.json is not known to be complete. Keys that are
/// missing do no harm; throws BadInput when the file cannot be read or is no JSON.
std::optional<EarlyEnd> ReadEarlyEnd(const std::string& factsName, std::size_t journalledLines);

} // namespace Bench
