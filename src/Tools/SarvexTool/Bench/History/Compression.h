#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace Bench {

/// More than this is not kept in one piece: no database takes it.
inline constexpr std::size_t MostBytesKept = 1'000'000'000;

/// The bytes in the format of zlib (RFC 1950). Throws std::length_error for more than
/// MostBytesKept.
std::string Compress(std::string_view bytes);

/// The bytes that Compress was given, of which there were so many. Throws std::runtime_error, also
/// for a size that cannot be, before memory is taken for it.
std::string Decompress(std::string_view compressed, std::size_t size);

} // namespace Bench
