#pragma once

#include <cstdint>
#include <string>

namespace VemoSimulator {

/// The port in the file Socket.cfg beside the program, read as clients read theirs: five bytes, of
/// which the fifth is dropped, and what is left up to a NUL. Throws std::runtime_error with the
/// file's path and the reason when that is no number from 1 to 9999.
std::uint16_t ReadPortFile();

} // namespace VemoSimulator
