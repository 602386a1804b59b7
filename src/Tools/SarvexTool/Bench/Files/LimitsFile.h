#pragma once

#include "Tools/SarvexTool/Bench/Core/Limits.h"
#include "Tools/SarvexTool/Bench/Files/BadFile.h"

#include <istream>
#include <string>
#include <string_view>

namespace Bench {

/// Reads a table of limits from a file, or from standard input for "-". Its texts are kept by the
/// pool that keeps those of the run. Throws BadInput with all that is wrong with it.
Limits ReadLimits(const std::string& name, std::istream& standardInput, TextPool& texts);

/// The limits of a table, whose name is for the problems only.
Limits ParseLimits(std::string_view bytes, const std::string& name, TextPool& texts);

} // namespace Bench
