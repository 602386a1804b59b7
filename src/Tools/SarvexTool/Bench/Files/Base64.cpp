#include "Tools/SarvexTool/Bench/Files/Base64.h"

#include <algorithm>
#include <cstdint>

namespace Bench {

namespace {

constexpr std::string_view digits =
    "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::size_t bytesOfGroup = 3;
constexpr std::size_t digitsOfGroup = 4;
constexpr unsigned bitsOfDigit = 6;
constexpr unsigned bitsOfByte = 8;
constexpr unsigned bitsOfGroup = 24;

void AppendGroup(std::string& text, std::string_view bytes) {
    std::uint32_t bits = 0;
    for (std::size_t index = 0; index < bytesOfGroup; ++index)
        bits = bits << bitsOfByte |
               (index < bytes.size() ? static_cast<unsigned char>(bytes[index]) : 0U);
    for (std::size_t index = 0; index < digitsOfGroup; ++index) {
        bits <<= bitsOfDigit;
        text += index > bytes.size() ? '=' : digits[bits >> bitsOfGroup & (digits.size() - 1)];
    }
}

/// The bits of one to four digits at the high end of a group; nothing when one is no digit.
std::optional<std::uint32_t> BitsOf(std::string_view group) {
    std::uint32_t bits = 0;
    for (std::size_t index = 0; index < digitsOfGroup; ++index) {
        const std::size_t digit = index < group.size() ? digits.find(group[index]) : 0;
        if (digit == std::string_view::npos)
            return std::nullopt;
        bits = bits << bitsOfDigit | static_cast<std::uint32_t>(digit);
    }
    return bits;
}

} // namespace

std::string ToBase64(std::string_view bytes) {
    std::string text;
    text.reserve((bytes.size() + bytesOfGroup - 1) / bytesOfGroup * digitsOfGroup);
    while (!bytes.empty()) {
        const std::string_view group = bytes.substr(0, bytesOfGroup);
        AppendGroup(text, group);
        bytes.remove_prefix(group.size());
    }
    return text;
}

std::optional<std::string> FromBase64(std::string_view text) {
    const std::string_view whole = text;
    const std::size_t fill = text.size() - std::min(text.find_last_not_of('=') + 1, text.size());
    text.remove_suffix(fill);
    std::string bytes;
    while (!text.empty()) {
        const std::string_view group = text.substr(0, digitsOfGroup);
        const std::optional<std::uint32_t> bits = BitsOf(group);
        if (!bits || group.size() == 1)
            return std::nullopt;
        for (unsigned index = 0; index + 1 < group.size(); ++index)
            bytes += static_cast<char>(
                static_cast<unsigned char>(*bits >> (bitsOfGroup - bitsOfByte * (index + 1))));
        text.remove_prefix(group.size());
    }
    // Only one text stands for the bytes: other fillings and left-over bits are refused.
    return ToBase64(bytes) == whole ? std::optional(bytes) : std::nullopt;
}

} // namespace Bench
