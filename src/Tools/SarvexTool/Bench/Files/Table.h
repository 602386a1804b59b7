#pragma once

#include "Tools/SarvexTool/Bench/Core/ProblemList.h"
#include "Tools/SarvexTool/Bench/Files/Cells.h"

#include <optional>
#include <string>
#include <string_view>
#include <vector>

namespace Bench {

/// What a kind of table may hold.
struct TableRules {
    /// The titles that its header may have.
    std::vector<const char*> columns;
    /// How much a line with more cells than the header matters, and an empty one.
    Severity longLines = Severity::Warning;
    Severity emptyLines = Severity::Warning;
    /// What to do about a cell without a value.
    const char* remedy = "write \"-\" for a setting that is to stay";
};

/// A line of a table.
struct TableRow {
    LineNumber line = 0;
    /// The line as it is, without its end.
    std::string_view whole;
    char separator = ',';
    /// None for an empty line.
    std::vector<Cell> cells;
};

/// Reads a comma-separated text as its author meant it, and tells where the client, which cuts at
/// every run of commas and knows no quotes, would understand something else: all that is wrong with
/// encoding, separators, quotes, line ends, control bytes, empty cells, short and long lines, and
/// the names of the columns. A text without an error is cut by the client into the very same cells,
/// on every system.
class Table {
public:
    /// Reads the header. The bytes outlive the table.
    Table(std::string_view bytes, const TableRules& rules);
    Table(const Table&) = delete;
    Table& operator=(const Table&) = delete;

    const TableRow& Header() const { return m_header; }

    /// Which cell of a row belongs to a column, given by its place in the rules; nothing when the
    /// header does not name it. Of a name that is given twice the later one counts.
    std::optional<std::size_t> PlaceOf(std::size_t column) const { return m_places[column]; }

    /// How many cells the header has, without empty ones at its end.
    std::size_t Width() const { return m_width; }

    /// Whether each cell of a row is below one of the header's. Spreadsheets save an empty column
    /// at the end of all lines: its cells count neither in the header nor below it, as for the
    /// client.
    bool IsAsWideAsHeader(const TableRow& row) const;

    /// Whether the lines end in a carriage return alone.
    bool HasCarriageReturnsAlone() const { return m_lineEnd == '\r'; }

    /// Whether the line that was read last has an end; the text's last line may lack it.
    bool EndsWithLineEnd() const { return m_endsWithLineEnd; }

    /// Reads the next line, whatever is wrong with it; false at the end. The row's texts belong to
    /// the table and to its bytes.
    bool Read(TableRow& row);

    /// What is wrong as far as the table was read. Who reads the cells may add to it.
    ProblemList& Problems() { return m_problems; }

private:
    void TakeLine(TableRow& row);
    void TakeCarriageReturns(TableRow& row, bool hasLineFeed);
    void TellEmptyLine(LineNumber line, bool hasCarriageReturn);
    void ChooseLineEnd();
    void ChooseSeparator(std::string_view header);
    void ReadHeader();
    void ReadColumnName(std::size_t place);
    void TellMark(std::string_view bytes);
    void CheckCells(const TableRow& row);
    void TellBlankCell(const TableRow& row, std::size_t place);
    void CheckBytes(const TableRow& row, std::size_t place, const Cell& cell);
    void CheckQuotes(const TableRow& row, std::size_t place, const Cell& cell);
    void CheckCount(const TableRow& row);
    void TellLongLine(const TableRow& row);
    char SeparatorOf(const TableRow& row);
    void Add(const ProblemKind& kind, const TableRow& row, std::size_t place, std::string text);

    TableRules m_rules;
    ProblemList m_problems;
    /// The text in UTF-8, where the bytes are in another encoding.
    std::string m_converted;
    std::string_view m_rest;
    LineNumber m_line = 0;
    char m_lineEnd = '\n';
    char m_separator = ',';
    bool m_endsInCrLf = false;
    TableRow m_header;
    bool m_endsWithLineEnd = true;
    std::size_t m_width = 0;
    std::vector<std::optional<std::size_t>> m_places;
};

} // namespace Bench
