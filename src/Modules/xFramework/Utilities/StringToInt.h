#pragma once

#include <cstdint>
#include <string>

namespace Utilities {

/// Reads a decimal 32-bit integer in the manner of std::stoi: leading white space is skipped, a
/// sign may follow, and what follows the digits is ignored. The standard function is not used
/// because its error texts differ between run-time libraries.
/// Throws std::invalid_argument "invalid stoi argument" when there is no digit, and
/// std::out_of_range "stoi argument out of range" when the value has more than 32 bits.
std::int32_t StringToInt(const std::string& text);

} // namespace Utilities
