#include "Tools/SarvexTool/Bench/Files/Table.h"

#include "Tools/SarvexTool/Bench/Core/Nearest.h"
#include "Tools/SarvexTool/Bench/Core/Utf8.h"
#include "Tools/SarvexTool/Bench/Files/Encoding.h"
#include "Tools/SarvexTool/Bench/Files/TableProblems.h"
#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"

#include <algorithm>
#include <array>
#include <utility>

namespace Bench {

namespace {

/// What a byte may be beside plain text.
enum ByteKind : unsigned char {
    Plain = 0,
    Control = 1,
    Tab = 2,
    CarriageReturn = 4,
    Quote = 8,
    BeyondAscii = 16,
    Comma = 32
};

constexpr std::array<unsigned char, 256> MakeByteKinds() {
    std::array<unsigned char, 256> kinds{};
    for (std::size_t byte = 0; byte < 0x20; ++byte)
        kinds[byte] = Control;
    kinds[0x7F] = Control;
    for (std::size_t byte = 0x80; byte < kinds.size(); ++byte)
        kinds[byte] = BeyondAscii;
    kinds['\t'] = Tab;
    kinds['\r'] = CarriageReturn;
    kinds['"'] = Quote;
    kinds[','] = Comma;
    return kinds;
}

constexpr std::array<unsigned char, 256> byteKinds = MakeByteKinds();

unsigned char KindsIn(std::string_view text) {
    unsigned char kinds = Plain;
    for (const char character : text)
        kinds |= byteKinds[static_cast<unsigned char>(character)];
    return kinds;
}

bool IsUtf8(std::string_view text) {
    while (!text.empty()) {
        const Utf8Character next = FirstCharacter(text);
        if (!next.isValid)
            return false;
        text.remove_prefix(next.size);
    }
    return true;
}

bool IsBlank(std::string_view text) {
    return text.find_first_not_of(" \t\r") == std::string_view::npos;
}

struct SeparatorRow {
    char separator;
    const char* name;
};

/// What spreadsheets write between cells beside commas.
constexpr std::array<SeparatorRow, 2> otherSeparators{{{';', "semicolons"}, {'\t', "tabs"}}};

std::string NameOf(char separator) {
    for (const SeparatorRow& row : otherSeparators) {
        if (row.separator == separator)
            return row.name;
    }
    return "commas";
}

/// The other separator that a line has most of; a comma when it has none.
char OtherSeparator(std::string_view line) {
    char found = ',';
    std::ptrdiff_t most = 0;
    for (const SeparatorRow& row : otherSeparators) {
        const auto count = std::count(line.begin(), line.end(), row.separator);
        if (count > most) {
            most = count;
            found = row.separator;
        }
    }
    return found;
}

std::string Hexadecimal(unsigned char byte) {
    constexpr std::string_view digits = "0123456789ABCDEF";
    return {'0', 'x', digits[byte / 16U], digits[byte % 16U]};
}

std::string CellsText(std::size_t count) {
    return count == 1 ? "1 cell" : std::to_string(count) + " cells";
}

std::string ListOf(const std::vector<const char*>& names) {
    std::string list;
    for (const char* const name : names)
        list.append(list.empty() ? "" : ", ").append(name);
    return list;
}

} // namespace

Table::Table(std::string_view bytes, const TableRules& rules)
    : m_rules(rules), m_places(rules.columns.size()) {
    TellMark(bytes);
    m_rest = WithoutMark(bytes, m_converted);
    ChooseLineEnd();
    ReadHeader();
}

void Table::TellMark(std::string_view bytes) {
    const ByteOrderMark mark = MarkOf(bytes);
    if (mark == ByteOrderMark::Utf8)
        m_problems.Add(TableProblem::encoding, 1, 1,
                       "the file begins with a byte order mark, which counts as a part "
                       "of the first column's name; save it as UTF-8 without one");
    else if (mark != ByteOrderMark::None)
        m_problems.Add(TableProblem::encoding, 1, 0,
                       "the file is in UTF-16; save it as UTF-8 without byte order mark");
}

void Table::ChooseLineEnd() {
    if (m_rest.find('\n') != std::string_view::npos)
        return;
    const std::size_t end = m_rest.find('\r');
    if (end >= m_rest.size() - std::min<std::size_t>(m_rest.size(), 1))
        return;
    m_lineEnd = '\r';
    m_problems.Add(TableProblem::carriageReturn, 1, 0,
                   "the lines end in a carriage return alone, so that all of them count as the "
                   "header; end them with a line feed");
}

void Table::ReadHeader() {
    m_header.line = 1;
    if (m_rest.empty()) {
        m_line = 1;
        m_problems.Add(TableProblem::noLine, 1, 0,
                       "the file is empty; its first line names the columns");
        return;
    }
    TakeLine(m_header);
    if (m_header.whole.find_first_not_of(',') == std::string_view::npos) {
        m_problems.Add(TableProblem::columnName, 1, 0,
                       "the header is empty; the first line names the columns");
        return;
    }
    ChooseSeparator(m_header.whole);
    m_header.separator = m_separator;
    CutLine(m_header.whole, m_separator, m_header.cells);
    m_width = m_header.cells.size();
    while (m_width > 0 && m_header.cells[m_width - 1].text.empty())
        --m_width;
    CheckCells(m_header);
    for (std::size_t place = 0; place < m_width; ++place)
        ReadColumnName(place);
}

void Table::ChooseSeparator(std::string_view header) {
    if (header.find(',') != std::string_view::npos)
        return;
    m_separator = OtherSeparator(PowerTest::TrimmedView(header));
    if (m_separator != ',')
        m_problems.Add(TableProblem::separator, 1, 0,
                       "the cells are separated by " + NameOf(m_separator) +
                           "; separate them by commas");
}

void Table::ReadColumnName(std::size_t place) {
    const std::string_view name = m_header.cells[place].text;
    if (IsBlank(name))
        return;
    if (place == 0 && name.starts_with("sep=")) {
        Add(TableProblem::columnName, m_header, place,
            "the line with \"sep=\" is for a spreadsheet alone, and counts as the header; take "
            "the line away");
        return;
    }
    const auto found = std::find(m_rules.columns.begin(), m_rules.columns.end(), name);
    if (found == m_rules.columns.end()) {
        const std::string_view nearest = NearestName(name, m_rules.columns);
        Add(TableProblem::columnName, m_header, place,
            "there is no column \"" + std::string(name) + "\"; " +
                (nearest.empty() ? "the columns are " + ListOf(m_rules.columns)
                                 : "did you mean \"" + std::string(nearest) + "\"?"));
        return;
    }
    std::optional<std::size_t>& known =
        m_places[static_cast<std::size_t>(found - m_rules.columns.begin())];
    if (known)
        Add(TableProblem::repeatedColumn, m_header, place,
            "the column \"" + std::string(name) + "\" is cell " + std::to_string(*known + 1) +
                " already; take one of them away");
    known = place;
}

bool Table::IsAsWideAsHeader(const TableRow& row) const {
    const auto isNothing = [](const Cell& cell) { return cell.text.empty() && !cell.isQuoted; };
    return row.cells.size() >= m_width &&
           (row.cells.size() == m_width || row.cells.size() <= m_header.cells.size()) &&
           std::all_of(row.cells.begin() + static_cast<std::ptrdiff_t>(m_width), row.cells.end(),
                       isNothing);
}

bool Table::Read(TableRow& row) {
    if (m_rest.empty()) {
        // Only once, and not for an empty file.
        if (std::exchange(m_line, 0) == 1 && !m_header.whole.empty())
            m_problems.Add(TableProblem::noLine, 1, 0,
                           "there is no line after the header; add at least one");
        return false;
    }
    TakeLine(row);
    row.cells.clear();
    row.separator = m_separator;
    if (row.whole.empty())
        return true;
    row.separator = SeparatorOf(row);
    CutLine(row.whole, row.separator, row.cells);
    CheckCells(row);
    CheckCount(row);
    return true;
}

void Table::TakeLine(TableRow& row) {
    const std::size_t end = m_rest.find(m_lineEnd);
    const bool hasEnd = end != std::string_view::npos;
    m_endsWithLineEnd = hasEnd;
    row.whole = m_rest.substr(0, end);
    row.line = ++m_line;
    m_rest.remove_prefix(hasEnd ? end + 1 : m_rest.size());
    const std::size_t size = row.whole.size();
    if (m_lineEnd == '\n')
        TakeCarriageReturns(row, hasEnd);
    if (row.whole.empty() && row.line > 1)
        TellEmptyLine(row.line, size > 0);
}

void Table::TakeCarriageReturns(TableRow& row, bool hasLineFeed) {
    if (hasLineFeed && row.whole.ends_with('\r')) {
        row.whole.remove_suffix(1);
        if (!std::exchange(m_endsInCrLf, true))
            m_problems.Add(TableProblem::crLf, row.line, 0,
                           "the lines end in CR LF, which a client on Linux copies into "
                           "result.csv; save the file with LF");
    }
    if (row.whole.find('\r') != std::string_view::npos)
        m_problems.Add(TableProblem::carriageReturn, row.line, 0,
                       "there is a carriage return in the line; take it away");
}

void Table::TellEmptyLine(LineNumber line, bool hasCarriageReturn) {
    if (hasCarriageReturn)
        m_problems.Add(TableProblem::emptyCrLfLine, line, 0,
                       "the line is empty but for its CR, which a client on Linux takes for the "
                       "first cell; take the line away");
    else if (m_rules.emptyLines == Severity::Error)
        m_problems.Add(TableProblem::emptyLineError, line, 0, "the line is empty; take it away");
    else
        m_problems.Add(TableProblem::emptyLineWarning, line, 0,
                       "the line is empty; it is run with the settings as they are");
}

char Table::SeparatorOf(const TableRow& row) {
    if (m_width < 2 || row.whole.find(m_separator) != std::string_view::npos)
        return m_separator;
    if (m_separator != ',')
        return row.whole.find(',') != std::string_view::npos ? ',' : m_separator;
    const char separator = OtherSeparator(PowerTest::TrimmedView(row.whole));
    if (separator != ',')
        m_problems.Add(TableProblem::separator, row.line, 0,
                       "the line's cells are separated by " + NameOf(separator) +
                           "; separate them by commas");
    return separator;
}

void Table::CheckCells(const TableRow& row) {
    const unsigned char kinds = KindsIn(row.whole);
    for (std::size_t place = 0; place < row.cells.size(); ++place) {
        const Cell& cell = row.cells[place];
        // Beyond the last column nothing is sent and nothing can move.
        if (IsBlank(cell.text) && place < m_width)
            TellBlankCell(row, place);
        if ((kinds & ~(Comma | CarriageReturn)) != Plain || row.separator != ',')
            CheckBytes(row, place, cell);
    }
}

void Table::TellBlankCell(const TableRow& row, std::size_t place) {
    const std::string remedy = row.line == 1 ? "name the column" : m_rules.remedy;
    if (row.cells[place].text.empty())
        Add(TableProblem::emptyCell, row, place,
            "the cell is empty, so that what follows moves one cell to the left; " + remedy);
    else
        Add(TableProblem::blankCell, row, place,
            "the cell holds nothing but blanks, which are sent as they are; " + remedy);
}

void Table::CheckBytes(const TableRow& row, std::size_t place, const Cell& cell) {
    const unsigned char kinds = KindsIn(cell.text);
    if ((kinds & Control) != 0) {
        const auto control = std::find_if(cell.text.begin(), cell.text.end(), [](char character) {
            return byteKinds[static_cast<unsigned char>(character)] == Control;
        });
        constexpr char controlZ = 0x1A;
        Add(TableProblem::controlByte, row, place,
            "the cell holds the control byte " + Hexadecimal(static_cast<unsigned char>(*control)) +
                (*control == controlZ ? ", which ends the file on Windows; " : "; ") +
                "take it away");
    }
    if ((kinds & BeyondAscii) != 0 && !IsUtf8(cell.text))
        Add(TableProblem::invalidUtf8, row, place,
            "the cell \"" + std::string(cell.text) + "\" is not in UTF-8; save the file as UTF-8");
    if ((kinds & Tab) != 0 && !IsBlank(cell.text))
        Add(TableProblem::tab, row, place,
            "there is a tab in the cell \"" + std::string(cell.text) +
                "\", which ends a value in the command; take it away");
    if (cell.isQuoted || (kinds & Quote) != 0)
        CheckQuotes(row, place, cell);
    if ((kinds & Comma) == 0)
        return;
    if (HasDecimalComma(cell.text))
        Add(TableProblem::decimalComma, row, place,
            "the number " + std::string(cell.text) + " has a decimal comma; write a point");
    else
        Add(TableProblem::comma, row, place,
            "the cell \"" + std::string(cell.text) +
                "\" holds a comma, at which it is cut; a cell cannot hold one");
}

void Table::CheckQuotes(const TableRow& row, std::size_t place, const Cell& cell) {
    if (cell.isQuoted)
        Add(TableProblem::quotes, row, place,
            "the cell is in quotes, which count as a part of it; take them away");
    else
        Add(TableProblem::quotes, row, place,
            "the cell " + std::string(cell.text) +
                " holds a quote, which would end its text in the command; take it away");
}

void Table::CheckCount(const TableRow& row) {
    if (row.cells.size() < m_width)
        m_problems.Add(TableProblem::shortLine, row.line, 0,
                       "the line has " + CellsText(row.cells.size()) + " and the header " +
                           std::to_string(m_width) + "; " + m_rules.remedy);
    else if (m_width > 0 && !IsAsWideAsHeader(row))
        TellLongLine(row);
}

void Table::TellLongLine(const TableRow& row) {
    const bool isError = m_rules.longLines == Severity::Error;
    m_problems.Add(isError ? TableProblem::longLineError : TableProblem::longLineWarning, row.line,
                   static_cast<std::uint32_t>(m_width + 1),
                   "the line has " + CellsText(row.cells.size()) + " and the header " +
                       std::to_string(m_width) +
                       (isError ? "; take those beyond it away" : "; those beyond it are ignored"));
}

void Table::Add(const ProblemKind& kind, const TableRow& row, std::size_t place, std::string text) {
    m_problems.Add(kind, row.line, static_cast<std::uint32_t>(place + 1), std::move(text));
}

} // namespace Bench
