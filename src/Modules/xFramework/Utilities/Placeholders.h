#pragma once

#include <string>

namespace Utilities {

/// Raises an Utilities::Exception* when text contains one of the placeholders ${1} to ${5}. Texts
/// that come from a user pass through here before they become arguments of a Format, whose
/// replacement would otherwise never end. what names the text in the error message, for example
/// "Argument"; the message itself holds no placeholder.
void RejectPlaceholders(const std::string& text, const std::string& what);

/// Whether text contains one of the placeholders ${1} to ${5}.
bool HasPlaceholder(const std::string& text);

} // namespace Utilities
