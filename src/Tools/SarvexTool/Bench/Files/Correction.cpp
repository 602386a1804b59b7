#include "Tools/SarvexTool/Bench/Files/Correction.h"

#include "Tools/SarvexTool/Bench/Files/Encoding.h"
#include "Tools/SarvexTool/Bench/Files/PlanLines.h"
#include "Tools/SarvexTool/Bench/Files/TableProblems.h"

#include <algorithm>
#include <utility>

namespace Bench {

namespace {

constexpr ProblemKind encoding{Severity::Warning, "changes of the encoding"};
constexpr ProblemKind separator{Severity::Warning, "lines with commas now"};
constexpr ProblemKind quotes{Severity::Warning, "cells without quotes now"};
constexpr ProblemKind emptyCell{Severity::Warning, "empty cells with \"-\" now"};
constexpr ProblemKind decimalComma{Severity::Warning, "numbers with a point now"};
constexpr ProblemKind lineEnds{Severity::Warning, "changes of line ends"};

/// Copies a table while it mends it.
class Corrector {
public:
    explicit Corrector(std::string_view bytes) : m_bytes(bytes), m_table(bytes, TestFileRules()) {}

    CorrectedTestFile Make() {
        TellEncoding();
        if (!m_bytes.empty())
            Copy(m_table.Header());
        TableRow row;
        while (m_table.Read(row))
            Copy(row);
        TellLineEnds();
        // A last line without an end stays one.
        if (!m_bytes.empty() && !m_table.EndsWithLineEnd())
            m_corrected.bytes.pop_back();
        // Bytes that would be taken for another byte order mark now can only be told about.
        if (MarkOf(m_corrected.bytes) != ByteOrderMark::None)
            return {std::string(m_bytes), {}};
        return std::move(m_corrected);
    }

private:
    void TellEncoding() {
        const ByteOrderMark mark = MarkOf(m_bytes);
        if (mark == ByteOrderMark::Utf8)
            Tell(encoding, 1, 1, "the byte order mark is gone");
        else if (mark != ByteOrderMark::None)
            Tell(encoding, 1, 0, "the text is in UTF-8 now, it was in UTF-16");
    }

    void TellLineEnds() {
        if (m_table.Problems().Count(TableProblem::crLf) > 0)
            Tell(lineEnds, 1, 0, "lines end in LF now, they ended in CR LF");
        else if (m_table.HasCarriageReturnsAlone())
            Tell(lineEnds, 1, 0, "lines end in LF now, they ended in CR");
    }

    void Copy(const TableRow& row) {
        // A comma in the one cell of a line would separate.
        const bool isSeparated =
            row.separator == ',' ||
            (row.cells.size() < 2 && row.whole.find(',') == std::string_view::npos);
        // Once for the whole file, and for each line that differs from it.
        if (!isSeparated && (row.line == 1 || row.separator != m_table.Header().separator))
            Tell(separator, row.line, 0, "commas separate the cells now");
        const bool isMended =
            std::any_of(row.cells.begin(), row.cells.end(), [&](const Cell& cell) {
                return CanUnquote(cell) || IsToBeFilled(row, cell) || HasDecimalComma(cell.text);
            });
        if (isSeparated && !isMended) {
            m_corrected.bytes.append(row.whole).append("\n");
            return;
        }
        for (std::size_t place = 0; place < row.cells.size(); ++place) {
            m_corrected.bytes += place == 0 ? "" : ",";
            CopyCell(row, place);
        }
        m_corrected.bytes += '\n';
    }

    void CopyCell(const TableRow& row, std::size_t place) {
        const Cell& cell = row.cells[place];
        const auto column = static_cast<std::uint32_t>(place + 1);
        if (CanUnquote(cell) || (cell.isQuoted && IsToBeFilled(row, cell)))
            Tell(quotes, row.line, column, "the quotes are gone");
        if (IsToBeFilled(row, cell)) {
            Tell(emptyCell, row.line, column, "the empty cell holds \"-\" now");
            m_corrected.bytes += '-';
        } else if (HasDecimalComma(cell.text)) {
            std::string number(cell.text);
            std::replace(number.begin(), number.end(), ',', '.');
            Tell(decimalComma, row.line, column, "the number is " + number + " now");
            m_corrected.bytes += number;
        } else {
            m_corrected.bytes += AsItIs(cell);
        }
    }

    /// What cannot be mended; a comma in it must not become a separator.
    static std::string AsItIs(const Cell& cell) {
        if (cell.isQuoted && !CanUnquote(cell))
            return "\"" + std::string(cell.text) + "\"";
        const bool needsQuotes = cell.text.find(',') != std::string_view::npos &&
                                 cell.text.find('"') == std::string_view::npos;
        return needsQuotes ? "\"" + std::string(cell.text) + "\"" : std::string(cell.text);
    }

    /// Whether the quotes hold nothing that would be something else without them.
    static bool CanUnquote(const Cell& cell) {
        return cell.isQuoted && !cell.text.empty() &&
               (cell.text.find_first_of("\",;\t\r") == std::string_view::npos ||
                HasDecimalComma(cell.text));
    }

    bool IsToBeFilled(const TableRow& row, const Cell& cell) const {
        const auto place = static_cast<std::size_t>(&cell - row.cells.data());
        return cell.text.empty() && row.line > 1 && place < m_table.Width() &&
               m_table.IsAsWideAsHeader(row);
    }

    void Tell(const ProblemKind& kind, LineNumber line, std::uint32_t column, std::string text) {
        m_corrected.changes.Add(kind, line, column, std::move(text));
    }

    std::string_view m_bytes;
    Table m_table;
    CorrectedTestFile m_corrected;
};

} // namespace

CorrectedTestFile CorrectTestFile(std::string_view bytes) {
    return Corrector(bytes).Make();
}

} // namespace Bench
