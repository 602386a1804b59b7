#include "Tools/SarvexTool/Bench/Output/TextTable.h"

#include "Tools/SarvexTool/Bench/Output/ShownText.h"

#include <algorithm>

namespace Bench {

namespace {

/// The number of characters of a text in UTF-8: of its bytes that continue none.
std::size_t WidthOf(const std::string& text) {
    constexpr int kindBits = 0xC0;
    constexpr int continuing = 0x80;
    return static_cast<std::size_t>(std::count_if(text.begin(), text.end(), [](char byte) {
        return (static_cast<unsigned char>(byte) & kindBits) != continuing;
    }));
}

} // namespace

TextTable::TextTable(std::vector<std::string> titles, std::size_t leftColumns)
    : m_leftColumns(leftColumns) {
    m_rows.push_back(std::move(titles));
}

void TextTable::Add(const std::vector<std::string>& cells) {
    std::vector<std::string>& row = m_rows.emplace_back();
    for (const std::string& cell : cells)
        row.push_back(MakeHarmless(cell));
}

void TextTable::Print(std::ostream& stream) const {
    std::vector<std::size_t> widths(m_rows.front().size());
    for (const auto& row : m_rows) {
        for (std::size_t column = 0; column < row.size(); ++column)
            widths[column] = std::max(widths[column], WidthOf(row[column]));
    }
    for (const auto& row : m_rows) {
        std::string line;
        for (std::size_t column = 0; column < row.size(); ++column) {
            const std::string padding(widths[column] - WidthOf(row[column]), ' ');
            const bool isLeft = column < m_leftColumns;
            line += (column == 0 ? "" : "  ") + (isLeft ? "" : padding) + row[column] +
                    (isLeft ? padding : "");
        }
        stream << line.substr(0, line.find_last_not_of(' ') + 1) << "\n";
    }
}

} // namespace Bench
