#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Bench {

/// Bytes as text of letters, digits, "+" and "/", filled up with "=" to groups of four.
std::string ToBase64(std::string_view bytes);

/// The bytes again; nothing for a text that ToBase64 does not write.
std::optional<std::string> FromBase64(std::string_view text);

} // namespace Bench
