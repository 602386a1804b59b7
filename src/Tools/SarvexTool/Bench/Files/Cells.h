#pragma once

#include <string_view>
#include <vector>

namespace Bench {

/// A cell of a line, as a spreadsheet shows it.
struct Cell {
    /// Without the blanks around it and without its quotes. A cell of blanks alone keeps them, as
    /// the client sends them. A quote within quotes is doubled, as in the file.
    std::string_view text;
    /// All that is between the separators.
    std::string_view raw;
    bool isQuoted = false;
};

/// Cuts a line at a separator, but not within quotes: where the client cuts at every comma, this is
/// what the file's author meant. There is one cell more than separators, empty ones included; a
/// line without quotes in it and without empty cells gives, for a comma, the client's own fields.
void CutLine(std::string_view line, char separator, std::vector<Cell>& cells);

/// Whether a text is a number with a comma where a point should be: digits, comma, digits.
bool HasDecimalComma(std::string_view text);

} // namespace Bench
