#pragma once

#include <algorithm>
#include <string_view>

namespace VemoSimulator {

inline char ToLowerAscii(char character) {
    constexpr char toLower = 'a' - 'A';
    return character >= 'A' && character <= 'Z' ? static_cast<char>(character + toLower)
                                                : character;
}

/// Compares without regard to the case of the letters A to Z, whatever the locale.
inline bool EqualsIgnoringCase(std::string_view first, std::string_view second) {
    return std::ranges::equal(first, second, {}, ToLowerAscii, ToLowerAscii);
}

} // namespace VemoSimulator
