#pragma once

#include "Tools/SarvexTool/Bench/Core/RunSource.h"
#include "Tools/SarvexTool/Bench/Files/JsonFields.h"

namespace Bench {

// Where lines were measured, as fields of JSON. What reads throws WrongJson for a value of another
// type, and for a key that is missing where one is needed.

/// Sets the keys "bench", "device" and "attempt", as far as they are known.
void PutPlace(Json& object, const RunPlace& place);

Json ToJson(const RunSource& source);
Json ToJson(const OtherAttempt& attempt);

/// A place needs no key.
RunPlace PlaceOf(const JsonFields& fields);
LineRange LinesOf(const JsonFields& fields);
RunSource RunSourceOf(const JsonFields& fields);
OtherAttempt OtherAttemptOf(const JsonFields& fields);

} // namespace Bench
