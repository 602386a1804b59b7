#include "Tools/SarvexTool/Bench/Output/ShownWidth.h"

#include "Tools/SarvexTool/Bench/Core/Utf8.h"

#include <algorithm>
#include <array>

namespace Bench {

namespace {

struct Range {
    char32_t first;
    char32_t last;
};

/// East Asian scripts, their punctuation and full-width forms, and pictures.
constexpr std::array<Range, 9> wide{{{0x1100, 0x115F},
                                     {0x2E80, 0xA4CF},
                                     {0xA960, 0xA97F},
                                     {0xAC00, 0xD7A3},
                                     {0xF900, 0xFAFF},
                                     {0xFE30, 0xFE6F},
                                     {0xFF00, 0xFFE6},
                                     {0x1F000, 0x1FAFF},
                                     {0x20000, 0x3FFFD}}};

std::size_t WidthOf(const Utf8Character& character) {
    const bool isWide = std::ranges::any_of(wide, [&](const Range& range) {
        return range.first <= character.code && character.code <= range.last;
    });
    return isWide ? 2 : 1;
}

/// The longest beginning of the text that so many columns hold.
std::string_view Beginning(std::string_view text, std::size_t width) {
    std::size_t size = 0;
    while (size < text.size()) {
        const Utf8Character next = FirstCharacter(text.substr(size));
        if (WidthOf(next) > width)
            break;
        width -= WidthOf(next);
        size += next.size;
    }
    return text.substr(0, size);
}

} // namespace

std::size_t ShownWidth(std::string_view text) {
    std::size_t width = 0;
    for (; !text.empty(); text.remove_prefix(FirstCharacter(text).size))
        width += WidthOf(FirstCharacter(text));
    return width;
}

std::string CutToWidth(std::string_view text, std::size_t width) {
    constexpr std::string_view dots = "...";
    const std::string_view whole = Beginning(text, width);
    if (whole.size() == text.size() || width < dots.size())
        return std::string(whole);
    return std::string(Beginning(text, width - dots.size())).append(dots);
}

std::string WrapText(std::string_view text, std::size_t indent) {
    constexpr std::size_t widest = 80;
    std::string lines;
    std::string line;
    // Blanks at the beginning of the text stay.
    std::size_t end = std::min(text.find_first_not_of(' '), text.size());
    while (true) {
        end = std::min(text.find(' ', end), text.size());
        const std::string_view word = text.substr(0, end);
        const bool isFirst = line.find_first_not_of(' ') == std::string::npos;
        if (!isFirst && ShownWidth(line) + 1 + ShownWidth(word) > widest) {
            lines.append(line).append("\n");
            line = std::string(indent, ' ').append(word);
        } else {
            line.append(isFirst ? "" : " ").append(word);
        }
        if (end == text.size())
            return lines.append(line).append("\n");
        text.remove_prefix(end + 1);
        end = 0;
    }
}

} // namespace Bench
