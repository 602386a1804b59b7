#pragma once

#include <string>

namespace Core {

/// A text such as {uint16:0x10}, taken apart.
struct TypedLiteral {
    std::string typeName;
    std::string valueText;
};

/// Splits a text in braces at its first colon; without a colon there is no value text, and a text
/// that is not in braces is a type name as a whole. Whether the type exists is not asked.
TypedLiteral SplitTypedLiteral(const std::string& text);

} // namespace Core
