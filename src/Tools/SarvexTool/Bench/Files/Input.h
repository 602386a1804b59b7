#pragma once

#include "Tools/SarvexTool/Bench/Files/BadFile.h"

#include <istream>
#include <string>

namespace Bench {

/// All bytes of a file, or of standard input for the name "-". Throws BadInput when it cannot be
/// read to its end, and for a spreadsheet's workbook, which is no text.
std::string ReadInput(const std::string& name, std::istream& standardInput);

} // namespace Bench
