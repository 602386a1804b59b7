#pragma once

#include <functional>
#include <string>
#include <string_view>

namespace Bench {

/// Reads a file of any size piece by piece. Throws BadInput, and what take throws.
void ReadPieces(const std::string& name, const std::function<void(std::string_view)>& take);

/// The SHA-256 of a file's bytes, in 64 hexadecimal digits. Throws BadInput.
std::string HashOfFile(const std::string& name);

} // namespace Bench
