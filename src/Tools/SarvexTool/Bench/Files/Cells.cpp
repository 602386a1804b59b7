#include "Tools/SarvexTool/Bench/Files/Cells.h"

#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"

#include <algorithm>

namespace Bench {

namespace {

constexpr char quote = '"';

/// Where a quoted text ends: after the first quote that is not one of a pair; nothing when it is
/// not closed.
std::size_t EndOfQuoted(std::string_view text) {
    std::size_t end = text.find(quote, 1);
    while (end != std::string_view::npos && end + 1 < text.size() && text[end + 1] == quote)
        end = text.find(quote, end + 2);
    return end == std::string_view::npos ? end : end + 1;
}

/// How long the cell is that a line begins with.
std::size_t SizeOfFirst(std::string_view line, char separator) {
    const std::size_t plain = std::min(line.find(separator), line.size());
    const std::size_t start = line.substr(0, plain).find_first_not_of(" \t");
    if (start == std::string_view::npos || line[start] != quote)
        return plain;
    const std::size_t end = EndOfQuoted(line.substr(start));
    if (end == std::string_view::npos)
        return plain;
    const std::size_t after = std::min(line.find(separator, start + end), line.size());
    // A text that goes on after its quotes is not a quoted one.
    const std::string_view rest = line.substr(start + end, after - start - end);
    return rest.find_first_not_of(" \t\r") == std::string_view::npos ? after : plain;
}

Cell MakeCell(std::string_view raw) {
    const std::string_view text = PowerTest::TrimmedView(raw);
    const bool isQuoted =
        text.size() >= 2 && text.front() == quote && EndOfQuoted(text) == text.size();
    return {isQuoted ? PowerTest::TrimmedView(text.substr(1, text.size() - 2)) : text, raw,
            isQuoted};
}

bool AreDigits(std::string_view text) {
    return !text.empty() && text.find_first_not_of("0123456789") == std::string_view::npos;
}

} // namespace

void CutLine(std::string_view line, char separator, std::vector<Cell>& cells) {
    cells.clear();
    const bool hasQuotes = line.find(quote) != std::string_view::npos;
    while (true) {
        const std::size_t size =
            hasQuotes ? SizeOfFirst(line, separator) : std::min(line.find(separator), line.size());
        cells.push_back(MakeCell(line.substr(0, size)));
        if (size == line.size())
            return;
        line.remove_prefix(size + 1);
    }
}

bool HasDecimalComma(std::string_view text) {
    const std::size_t comma = text.find(',');
    return comma != std::string_view::npos && AreDigits(text.substr(0, comma)) &&
           AreDigits(text.substr(comma + 1));
}

} // namespace Bench
