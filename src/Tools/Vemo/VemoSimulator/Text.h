#pragma once

#include <algorithm>
#include <charconv>
#include <cstdint>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace VemoSimulator {

/// The words of a command, from a request's body: "CLI -1 ", perhaps "-vemo", then words separated
/// by blanks. A word in double quotes may hold blanks and loses its quotes. Nothing when the body
/// does not begin with "CLI -1 ".
///
/// Clients put quotes around a word with blanks but do not escape the quotes within it: so a quote
/// ends a quoted word only where a blank or the end of the command follows.
std::optional<std::vector<std::string>> SplitCommand(const std::string& body);

/// The number that a text of decimal digits and nothing else means; nothing for any other text and
/// for a number of more than 64 bits.
inline std::optional<std::uint64_t> ParseDecimal(std::string_view text) {
    std::uint64_t number = 0;
    const char* const last = text.data() + text.size();
    const auto [end, error] = std::from_chars(text.data(), last, number);
    if (error != std::errc{} || end != last)
        return std::nullopt;
    return number;
}

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
