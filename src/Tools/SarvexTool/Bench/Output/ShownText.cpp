#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include "Tools/SarvexTool/Bench/Core/Utf8.h"

#include <algorithm>
#include <array>

namespace Bench {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

/// What a terminal obeys, or what hides or reorders other characters.
constexpr std::array<Range, 13> harmful{{{0x00, 0x1F},
                                         {0x7F, 0x9F},
                                         {0xAD, 0xAD},
                                         {0x61C, 0x61C},
                                         {0x180E, 0x180E},
                                         {0x200B, 0x200F},
                                         {0x2028, 0x202E},
                                         {0x2060, 0x206F},
                                         {0xFE00, 0xFE0F},
                                         {0xFEFF, 0xFEFF},
                                         {0xFFF0, 0xFFFB},
                                         {0xFFFE, 0xFFFF},
                                         {0xE0000, 0xE0FFF}}};

bool IsHarmful(char32_t character) {
    return std::any_of(harmful.begin(), harmful.end(), [character](const Range& range) {
        return range.first <= character && character <= range.last;
    });
}

std::string Hexadecimal(std::uint32_t number, std::size_t fewestDigits) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    constexpr std::uint32_t base = 16;
    std::string text;
    for (; number != 0 || text.size() < fewestDigits; number /= base)
        text.insert(text.begin(), digits[number % base]);
    return text;
}

std::string Escape(char32_t character) {
    constexpr std::string_view named = "\t\n\r";
    constexpr std::string_view names = "tnr";
    constexpr char32_t firstBeyondBytes = 0x80;
    if (character >= firstBeyondBytes)
        return "\\u{" + Hexadecimal(character, 4) + "}";
    const std::size_t index = named.find(static_cast<char>(character));
    if (index != std::string_view::npos)
        return {'\\', names[index]};
    return "\\x" + Hexadecimal(character, 2);
}

} // namespace

std::string MakeHarmless(std::string_view text) {
    // Most texts are plain, and need no look at each character's meaning.
    if (std::all_of(text.begin(), text.end(), [](char byte) { return byte >= ' ' && byte <= '~'; }))
        return std::string(text);
    std::string shown;
    shown.reserve(text.size());
    while (!text.empty()) {
        const Utf8Character next = FirstCharacter(text);
        if (!next.isValid)
            shown += "\\x" + Hexadecimal(static_cast<unsigned char>(text.front()), 2);
        else if (IsHarmful(next.code))
            shown += Escape(next.code);
        else
            shown += text.substr(0, next.size);
        text.remove_prefix(next.size);
    }
    return shown;
}

} // namespace Bench
