#pragma once

#include "Tools/SarvexTool/Bench/Core/Measurements.h"
#include "Tools/SarvexTool/Bench/Core/RunPlace.h"
#include "Tools/SarvexTool/Bench/Core/Sources.h"

#include <optional>
#include <string>

namespace Bench {

// What the run.json beside a result tells of its measurements. Somebody else may have written it:
// keys that are missing, or that nobody asks for, do no harm. All of these throw BadInput when the
// file cannot be read or is no JSON.

/// Whether a run with a journal ended before its last line: its run.json has fewer journalled lines
/// than the test file had, or does not tell how many there were and calls the run anything but
/// "complete". A run without a run.json is not known to be complete.
std::optional<EarlyEnd> ReadEarlyEnd(const std::string& factsName, std::size_t journalledLines);

/// The place that the run.json of that name tells. A file that does not exist tells none.
RunPlace ReadPlace(const std::string& factsName);

/// Where the lines of a run were measured: by its sources where it was merged, else by its own
/// place, which is that of all lines. A file that does not exist tells nothing. Throws BadInput,
/// too, for sources that are not as they should be.
Sources ReadSources(const std::string& factsName);

} // namespace Bench
