#pragma once

#include <cstddef>
#include <string_view>

namespace Bench {

/// The character that a text begins with.
struct Utf8Character {
    char32_t code = 0;
    /// In bytes. A byte that begins no character of UTF-8 is one that is not valid.
    std::size_t size = 1;
    bool isValid = false;
};

/// The first character of a text that is not empty. Overlong forms, surrogates and what is beyond
/// U+10FFFF are not valid.
Utf8Character FirstCharacter(std::string_view text);

} // namespace Bench
