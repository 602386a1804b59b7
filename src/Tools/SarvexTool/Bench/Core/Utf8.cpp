#include "Tools/SarvexTool/Bench/Core/Utf8.h"

#include <array>

namespace Bench {

namespace {

/// The forms of a character in several bytes, by its first byte.
struct Form {
    unsigned char firstByteMask;
    unsigned char firstByte;
    std::size_t size;
    char32_t lowest;
};

constexpr std::array<Form, 3> forms{
    {{0xE0, 0xC0, 2, 0x80}, {0xF0, 0xE0, 3, 0x800}, {0xF8, 0xF0, 4, 0x10000}}};

constexpr int bitsPerByte = 6;
constexpr unsigned char continuationMask = 0xC0;
constexpr unsigned char continuationMark = 0x80;
constexpr unsigned char continuationBits = 0x3F;

bool IsCodePoint(char32_t code, char32_t lowest) {
    constexpr char32_t firstSurrogate = 0xD800;
    constexpr char32_t lastSurrogate = 0xDFFF;
    constexpr char32_t last = 0x10FFFF;
    return code >= lowest && code <= last && (code < firstSurrogate || code > lastSurrogate);
}

Utf8Character Decode(std::string_view text, const Form& form) {
    if (text.size() < form.size)
        return {};
    const auto mask = static_cast<unsigned char>(~form.firstByteMask);
    char32_t code = static_cast<unsigned char>(text[0]) & mask;
    for (std::size_t index = 1; index < form.size; ++index) {
        const auto byte = static_cast<unsigned char>(text[index]);
        if ((byte & continuationMask) != continuationMark)
            return {};
        code = code << bitsPerByte | (byte & continuationBits);
    }
    return IsCodePoint(code, form.lowest) ? Utf8Character{code, form.size, true} : Utf8Character{};
}

} // namespace

Utf8Character FirstCharacter(std::string_view text) {
    constexpr unsigned char firstBeyondAscii = 0x80;
    const auto first = static_cast<unsigned char>(text.front());
    if (first < firstBeyondAscii)
        return {first, 1, true};
    for (const Form& form : forms) {
        if ((first & form.firstByteMask) == form.firstByte)
            return Decode(text, form);
    }
    return {};
}

} // namespace Bench
