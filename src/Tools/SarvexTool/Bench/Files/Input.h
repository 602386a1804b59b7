#pragma once

#include "Tools/SarvexTool/Bench/Files/BadFile.h"

#include <functional>
#include <istream>
#include <string>
#include <string_view>

namespace Bench {

/// All bytes of a file, or of standard input for the name "-". Throws BadInput when it cannot be
/// read to its end, and for a spreadsheet's workbook, which is no text.
std::string ReadInput(const std::string& name, std::istream& standardInput);

/// Reads a file of any size piece by piece. Throws BadInput, and what take throws.
void ReadPieces(const std::string& name, const std::function<void(std::string_view)>& take);

/// The SHA-256 of a file's bytes, in 64 hexadecimal digits. Throws BadInput.
std::string HashOfFile(const std::string& name);

} // namespace Bench
