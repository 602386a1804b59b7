#pragma once

#include <optional>
#include <string>
#include <string_view>

namespace Bench {

/// A text of any bytes as the databases take it: unchanged where it is UTF-8 without a NUL and does
/// not begin with "base64:", else in base64 with that before it. Different texts stay different.
std::string StoredText(std::string_view text);

/// The text again; what StoredText has not written stays as it is.
std::string TextOfStored(std::string_view stored);

} // namespace Bench
