#pragma once

#include "Tools/SarvexTool/Bench/Core/RunPlace.h"
#include "Tools/SarvexTool/Bench/Files/JsonFields.h"

#include <string>

namespace Bench {

/// Sets the keys "bench", "device" and "attempt", as far as they are known.
void PutPlace(Json& object, const RunPlace& place);

/// Throws WrongJson for a value of another type.
RunPlace PlaceOf(const JsonFields& fields);

/// The place that the run.json of that name tells; other keys do no harm. A file that does not
/// exist tells none. Throws BadInput when the file cannot be read or is no JSON.
RunPlace ReadPlace(const std::string& factsName);

} // namespace Bench
