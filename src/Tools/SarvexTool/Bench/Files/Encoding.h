#pragma once

#include <cstdint>
#include <string>
#include <string_view>

namespace Bench {

/// What a text's first bytes say of its encoding.
enum class ByteOrderMark : std::uint8_t { None, Utf8, Utf16LittleEndian, Utf16BigEndian };

ByteOrderMark MarkOf(std::string_view bytes);

/// A text without its mark. A text in UTF-16 becomes UTF-8, in storage; what is no UTF-16 in it
/// becomes bytes that are no UTF-8.
std::string_view WithoutMark(std::string_view bytes, std::string& storage);

} // namespace Bench
