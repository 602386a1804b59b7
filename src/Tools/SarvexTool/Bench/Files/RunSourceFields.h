#pragma once

#include "Tools/SarvexTool/Bench/Core/RunSource.h"
#include "Tools/SarvexTool/Bench/Core/Sources.h"
#include "Tools/SarvexTool/Bench/Files/JsonFields.h"

#include <string>

namespace Bench {

Json ToJson(const RunSource& source);
Json ToJson(const OtherAttempt& attempt);

/// Both throw WrongJson for a key that is missing or of another type.
RunSource RunSourceOf(const JsonFields& fields);
OtherAttempt OtherAttemptOf(const JsonFields& fields);

/// Where the lines of a run were measured, as its run.json tells: by its sources where it was
/// merged, else by its own place, which is that of all lines. Other keys do no harm. A file that
/// does not exist tells nothing. Throws BadInput when the file cannot be read or is no JSON, and
/// for sources that are not as they should be.
Sources ReadSources(const std::string& factsName);

} // namespace Bench
