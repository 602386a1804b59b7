#include "Tools/SarvexTool/Bench/Files/LimitsFile.h"

#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/Table.h"
#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"

#include <array>
#include <optional>
#include <unordered_map>
#include <utility>

namespace Bench {

namespace {

constexpr ProblemKind missingColumn{Severity::Error, "missing columns"};
constexpr ProblemKind wrongChain{Severity::Error, "cells that are no chain"};
constexpr ProblemKind wrongPattern{Severity::Error, "cells that are no value, list or range"};
constexpr ProblemKind wrongBound{Severity::Error, "cells that are no bound"};
constexpr ProblemKind wrongOrder{Severity::Error, "lines with Min above Max"};

constexpr std::string_view any = "*";

/// The columns after the settings.
enum LimitColumn : std::size_t { ChainColumn = SettingCount, MinColumn, MaxColumn, ColumnCount };

TableRules Rules() {
    TableRules rules;
    for (std::size_t index = 0; index < SettingCount; ++index)
        rules.columns.push_back(NameOf(static_cast<Setting>(index)));
    for (const char* title : {"Chain", "Min", "Max"})
        rules.columns.push_back(title);
    rules.longLines = Severity::Error;
    rules.emptyLines = Severity::Error;
    rules.remedy = "write * for any value, or for no bound";
    return rules;
}

struct ChainRow {
    std::string_view cell;
    bool isForA;
    bool isForB;
};

constexpr std::array<ChainRow, 4> chainRows{
    {{"A", true, false}, {"B", false, true}, {"A|B", true, true}, {any, true, true}}};

/// A cell of a line, for what is wrong with it.
struct Place {
    LineNumber line;
    std::size_t column;
    std::string_view text;
};

std::string Quoted(std::string_view text) {
    return "\"" + std::string(text) + "\"";
}

/// Reads the lines of a table of limits.
class LimitsReader {
public:
    LimitsReader(std::string_view bytes, TextPool& texts)
        : m_table(bytes, Rules()), m_texts(texts) {
        for (const std::size_t column : {ChainColumn, MinColumn, MaxColumn}) {
            if (!m_table.PlaceOf(column) && !m_table.Header().whole.empty())
                m_table.Problems().Add(missingColumn, 1, 0,
                                       std::string("the column ") + Rules().columns[column] +
                                           " is missing; add it");
        }
    }

    void Read() {
        TableRow row;
        while (m_table.Read(row)) {
            Limit limit;
            limit.line = row.line;
            for (std::size_t index = 0; index < SettingCount; ++index)
                limit.settings[index] = ReadPattern(row, index);
            ReadChain(row, limit);
            limit.minimum = ReadBound(row, MinColumn);
            limit.maximum = ReadBound(row, MaxColumn);
            if (limit.minimum && limit.maximum && *limit.minimum > *limit.maximum)
                m_table.Problems().Add(wrongOrder, row.line, 0,
                                       "Min is above Max, so that nothing can pass; swap them");
            m_limits.lines.push_back(limit);
        }
    }

    ProblemList& Problems() { return m_table.Problems(); }
    Limits Take() { return std::move(m_limits); }

private:
    /// Nothing where the line has no such cell, or an empty one: the table tells that.
    std::optional<Place> CellOf(const TableRow& row, std::size_t column) const {
        const std::optional<std::size_t> place = m_table.PlaceOf(column);
        if (!place || *place >= row.cells.size() || row.cells[*place].text.empty())
            return std::nullopt;
        return Place{row.line, *place, row.cells[*place].text};
    }

    void Add(const ProblemKind& kind, const Place& place, std::string text) {
        m_table.Problems().Add(kind, place.line, static_cast<std::uint32_t>(place.column + 1),
                               std::move(text));
    }

    void ReadChain(const TableRow& row, Limit& limit) {
        const std::optional<Place> cell = CellOf(row, ChainColumn);
        if (!cell)
            return;
        for (const ChainRow& known : chainRows) {
            if (known.cell != cell->text)
                continue;
            limit.isForChainA = known.isForA;
            limit.isForChainB = known.isForB;
            return;
        }
        Add(wrongChain, *cell, Quoted(cell->text) + " is no chain; write A, B, A|B or *");
    }

    std::optional<Decimal> ReadBound(const TableRow& row, LimitColumn column) {
        const std::optional<Place> cell = CellOf(row, column);
        if (!cell || cell->text == any)
            return std::nullopt;
        const std::optional<Decimal> bound = Decimal::Parse(cell->text);
        if (!bound)
            Add(wrongBound, *cell,
                Quoted(cell->text) + (HasDecimalForm(cell->text)
                                          ? " has too many digits; nine before the point and nine "
                                            "after it are possible"
                                          : " is no decimal number; write one in dBm, or * for no "
                                            "bound"));
        return bound;
    }

    /// Null for any value.
    const SettingPattern* ReadPattern(const TableRow& row, std::size_t column) {
        const std::optional<Place> cell = CellOf(row, column);
        if (!cell || cell->text == any)
            return nullptr;
        // Most lines have a cell of a line before them.
        const std::string* const text = m_texts.Keep(cell->text);
        const auto [entry, isNew] = m_patterns.try_emplace(text);
        if (!isNew)
            return entry->second;
        SettingPattern pattern;
        if (!ReadItems(*cell, pattern)) {
            // The same mistake is told wherever it is made.
            m_patterns.erase(entry);
            return nullptr;
        }
        return entry->second = &m_limits.patterns.emplace_back(std::move(pattern));
    }

    bool ReadItems(const Place& cell, SettingPattern& pattern) {
        std::string_view rest = cell.text;
        bool isRight = true;
        for (bool isLast = false; !isLast;) {
            const std::size_t end = rest.find('|');
            isLast = end == std::string_view::npos;
            isRight =
                ReadItem(cell, PowerTest::TrimmedView(rest.substr(0, end)), pattern) && isRight;
            rest.remove_prefix(isLast ? rest.size() : end + 1);
        }
        return isRight;
    }

    bool ReadItem(const Place& cell, std::string_view item, SettingPattern& pattern) {
        if (item.find("..") != std::string_view::npos)
            return ReadRange(cell, item, pattern);
        if (item.find_first_not_of(' ') == std::string_view::npos)
            return Refuse(cell,
                          "the list " + Quoted(cell.text) + " has an empty place; take one | away");
        if (item == any)
            return Refuse(cell, "* in a list makes the rest of it needless; write * alone");
        if (item == PowerTest::unsetCell)
            return Refuse(cell, "no setting is \"-\"; write * for any value");
        pattern.values.push_back(m_texts.Keep(item));
        return true;
    }

    bool ReadRange(const Place& cell, std::string_view item, SettingPattern& pattern) {
        constexpr std::string_view dots = "..";
        const std::size_t place = item.find(dots);
        const auto first = Decimal::Parse(PowerTest::TrimmedView(item.substr(0, place)));
        const auto last = Decimal::Parse(PowerTest::TrimmedView(item.substr(place + dots.size())));
        if (!first || !last)
            return Refuse(cell, Quoted(item) + " is no range of numbers; write one like 36..64");
        if (*first > *last)
            return Refuse(cell, "the range " + std::string(item) +
                                    " is the wrong way round; write the lower end first");
        pattern.ranges.push_back({*first, *last});
        return true;
    }

    bool Refuse(const Place& cell, std::string text) {
        Add(wrongPattern, cell, std::move(text));
        return false;
    }

    Table m_table;
    TextPool& m_texts;
    Limits m_limits;
    std::unordered_map<const std::string*, const SettingPattern*> m_patterns;
};

} // namespace

Limits ReadLimits(const std::string& name, std::istream& standardInput, TextPool& texts) {
    return ParseLimits(ReadInput(name, standardInput), name, texts);
}

Limits ParseLimits(std::string_view bytes, const std::string& name, TextPool& texts) {
    LimitsReader reader(bytes, texts);
    reader.Read();
    if (reader.Problems().Count(Severity::Error) == 0)
        return reader.Take();
    // What is a warning for a table that the client reads, such as CR LF, does limits no harm.
    std::vector<Problem> problems = reader.Problems().InOrder();
    std::erase_if(problems,
                  [](const Problem& problem) { return problem.severity != Severity::Error; });
    throw BadInput(name, problems);
}

} // namespace Bench
