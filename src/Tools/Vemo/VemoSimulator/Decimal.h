#pragma once

#include <charconv>
#include <cstdint>
#include <optional>
#include <string_view>

namespace VemoSimulator {

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

} // namespace VemoSimulator
