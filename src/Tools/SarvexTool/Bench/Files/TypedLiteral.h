#pragma once

#include <string_view>

namespace Bench {

/// Whether the client takes a text for a typed literal, such as {int:0x1F}, and sends its value in
/// place of the text.
bool IsTypedLiteral(std::string_view text);

} // namespace Bench
