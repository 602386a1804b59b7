#include "Tools/SarvexTool/Bench/Files/ResultFile.h"

#include "Tools/SarvexTool/Bench/Core/ProblemList.h"
#include "Tools/SarvexTool/Bench/Files/Encoding.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/ResultTree.h"
#include "Tools/SarvexTool/Bench/Files/RunRecord.h"
#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"

#include <algorithm>
#include <fstream>
#include <utility>

namespace Bench {

namespace {

constexpr ProblemKind headerKind{Severity::Error, "wrong headers"};
constexpr ProblemKind rowKind{Severity::Error, "lines without their two powers"};
constexpr ProblemKind powerKind{Severity::Error, "cells that are no power"};
constexpr ProblemKind emptyKind{Severity::Error, "results without a measurement"};
constexpr ProblemKind journalKind{Severity::Error, "rows that are not those of the journal"};

/// The next line without its end, taken off the text. A result that was written on Windows ends its
/// lines in CR LF.
std::string_view TakeLine(std::string_view& text) {
    const std::size_t end = std::min(text.find('\n'), text.size());
    std::string_view line = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    if (line.ends_with('\r'))
        line.remove_suffix(1);
    return line;
}

/// What is after the last comma, taken off the line with its comma; nothing without a comma.
std::optional<std::string_view> TakeLastCell(std::string_view& line) {
    const std::size_t comma = line.rfind(',');
    if (comma == std::string_view::npos)
        return std::nullopt;
    const std::string_view cell = PowerTest::TrimmedView(line.substr(comma + 1));
    line.remove_suffix(line.size() - comma);
    return cell;
}

std::optional<Setting> SettingNamed(std::string_view title) {
    for (std::size_t index = 0; index < SettingCount; ++index) {
        if (NameOf(static_cast<Setting>(index)) == title)
            return static_cast<Setting>(index);
    }
    return std::nullopt;
}

/// Reads the lines of a result.csv.
class ResultReader {
public:
    /// isOfNoLines says that the test file has none.
    ResultReader(TextPool& texts, JournalReader* pJournal, bool isOfNoLines = false)
        : m_texts(texts), m_pJournal(pJournal), m_isOfNoLines(isOfNoLines) {}

    void Read(std::string_view bytes) {
        if (bytes.empty()) {
            if (TellMissingRow())
                return;
            if (m_isOfNoLines)
                TellNoMeasurement("");
            else
                TellEmpty();
            return;
        }
        m_builder.Reserve(static_cast<std::size_t>(std::count(bytes.begin(), bytes.end(), '\n')));
        const std::string_view whole = bytes;
        // Without its header it may be any other file, of whose lines nothing could be said.
        if (!ReadHeader(TakeLine(bytes)) || !ReadRows(whole, bytes))
            return;
        if (bytes.empty() && TellMissingRow())
            return;
        if (m_line == 1)
            TellNoMeasurement("the run ended before its first line; ");
    }

    ProblemList& Problems() { return m_problems; }
    RunResult Take() { return m_builder.Take(); }
    /// How many of the lines have a row, but were not run.
    std::size_t NotRun() const { return m_notRun; }

private:
    /// Reads the rows of finished lines off the rest of the file; false when one of them is not
    /// what it should be.
    bool ReadRows(std::string_view whole, std::string_view& rest) {
        while (!rest.empty() && IsFinished()) {
            ++m_line;
            const std::string_view line = TakeLine(rest);
            if (rest.empty() && !whole.ends_with('\n')) {
                TellCutLine();
                return false;
            }
            if (!IsJournalled(whole.size() - rest.size()))
                return false;
            ReadRow(line);
        }
        return true;
    }

    /// Whether the next row is that of a finished line. A row that is not journalled is of a line
    /// that was under way when the run ended.
    bool IsFinished() { return m_pJournal == nullptr || m_pJournal->Read(m_entry); }

    /// Whether a row that ends after so many bytes is the one that the journal has.
    bool IsJournalled(std::uint64_t end) {
        if (m_pJournal == nullptr || (m_entry.line == m_line && m_entry.csvEnd == end))
            return true;
        m_problems.Add(journalKind, m_line, 0,
                       "the row does not end where the journal says; the file was changed after "
                       "the run");
        return false;
    }

    /// Whether it is the header of a result, with unknown columns or not.
    bool ReadHeader(std::string_view line) {
        const std::string_view titles = PowerTest::powerTitles;
        if (!line.ends_with(titles) && WasChanged(line)) {
            m_problems.Add(
                headerKind, 1, 0,
                "the header was changed after the run, perhaps by a spreadsheet that has "
                "saved the file; take the file as the client has written it");
            return false;
        }
        if (!line.ends_with(titles)) {
            m_problems.Add(headerKind, 1, 0,
                           "the header is missing: it ends in \"" + std::string(titles) +
                               "\"; the client writes none when the test file has an unknown "
                               "column, so check the test file and run it again");
            return false;
        }
        line.remove_suffix(titles.size());
        PowerTest::SplitFields(line, m_fields);
        for (std::size_t place = 0; place < m_fields.size(); ++place)
            ReadTitle(place);
        return true;
    }

    /// Whether a line was the header of a result: it still names a power, or is in an encoding that
    /// the client does not write.
    static bool WasChanged(std::string_view line) {
        const std::string_view titles = PowerTest::powerTitles;
        const std::string_view first = titles.substr(1, titles.find(',', 1) - 1);
        return line.find(first) != std::string_view::npos || MarkOf(line) != ByteOrderMark::None;
    }

    void ReadTitle(std::size_t place) {
        const std::optional<Setting> setting = SettingNamed(m_fields[place]);
        if (setting)
            m_places[static_cast<std::size_t>(*setting)] = place;
        else
            m_problems.Add(headerKind, 1, static_cast<std::uint32_t>(place + 1),
                           "there is no column \"" + std::string(m_fields[place]) +
                               "\"; the header was changed after the run");
    }

    /// Whether the journal goes on after the last row.
    bool TellMissingRow() {
        if (m_pJournal == nullptr || !m_pJournal->Read(m_entry))
            return false;
        m_problems.Add(journalKind, m_line + 1, 0,
                       "the row is missing, although the journal has its line; the file was "
                       "changed after the run");
        return true;
    }

    void TellNoMeasurement(const std::string& why) {
        m_problems.Add(emptyKind, 1, 0,
                       "there is no measurement, because " +
                           (m_isOfNoLines ? "the test file has no lines" : why + Remedy()));
    }

    void TellEmpty() {
        m_problems.Add(emptyKind, 1, 0,
                       std::string("the file is empty: ") +
                           (m_pJournal == nullptr
                                ? "the run could not open its test file, was ended, or goes on; "
                                : "no line of the run is finished; ") +
                           Remedy());
    }

    /// What can be done where no line is finished.
    const char* Remedy() const {
        return m_pJournal == nullptr ? "run the test again"
                                     : "go on with it: SarvexToolBench run --resume";
    }

    /// The client writes a line and its end in one piece: where the end is missing, digits may be.
    void TellCutLine() {
        m_problems.Add(rowKind, m_line, 0,
                       "the last line has no end, so that its power may be cut off; copy the file "
                       "again, or run the test again");
    }

    void ReadRow(std::string_view line) {
        const std::optional<std::string_view> powerB = TakeLastCell(line);
        const std::optional<std::string_view> powerA = TakeLastCell(line);
        if (!powerA || !powerB) {
            m_problems.Add(rowKind, m_line, 0,
                           "the line does not end in two powers; the file was changed after the "
                           "run, or is not whole");
            return;
        }
        PowerTest::SplitFields(line, m_fields);
        Row row;
        row.line = m_line;
        row.powerA = ReadPower(*powerA, m_fields.size() + 1);
        row.powerB = ReadPower(*powerB, m_fields.size() + 2);
        for (std::size_t index = 0; index < SettingCount; ++index)
            row.own[static_cast<Setting>(index)] = OwnText(index);
        if (m_pJournal != nullptr)
            row.journalled = {KeptOf(m_entry.outcome.a), KeptOf(m_entry.outcome.b),
                              m_entry.outcome.isAccepted, m_entry.isExplicit};
        m_notRun += std::size_t{m_entry.outcome.a.outcome == Outcome::NotRun};
        m_builder.Add(row);
    }

    JournalledChain KeptOf(const ChainOutcome& chain) {
        return {chain.outcome, chain.text.empty() ? nullptr : m_texts.Keep(chain.text)};
    }

    /// The text of a setting that the line writes; null where it writes none.
    const std::string* OwnText(std::size_t setting) {
        const std::optional<std::size_t>& place = m_places[setting];
        if (!place || *place >= m_fields.size() || m_fields[*place] == PowerTest::unsetCell)
            return nullptr;
        // Lines often repeat what the one before them wrote.
        const std::string*& last = m_last[setting];
        if (last == nullptr || *last != m_fields[*place])
            last = m_texts.Keep(m_fields[*place]);
        return last;
    }

    std::optional<Decimal> ReadPower(std::string_view cell, std::size_t column) {
        if (cell == PowerTest::missingPower)
            return std::nullopt;
        const std::optional<Decimal> power = Decimal::Parse(cell);
        if (!power)
            m_problems.Add(powerKind, m_line, static_cast<std::uint32_t>(column),
                           "\"" + std::string(cell) + "\" is no power: " +
                               (HasDecimalForm(cell) ? "it has too many digits"
                                                     : "it is neither NA nor a decimal number") +
                               "; run the line again");
        return power;
    }

    TextPool& m_texts;
    /// Null for a run without a journal.
    JournalReader* m_pJournal;
    bool m_isOfNoLines;
    /// What the journal has of the row that is read.
    JournalEntry m_entry;
    RunResultBuilder m_builder;
    ProblemList m_problems;
    LineNumber m_line = 1;
    std::size_t m_notRun = 0;
    /// The place of each setting among the cells.
    std::array<std::optional<std::size_t>, SettingCount> m_places;
    std::array<const std::string*, SettingCount> m_last{};
    std::vector<std::string_view> m_fields;
};

constexpr const char* tableName = "result.csv";

RunResult Parse(ResultReader& reader, std::string_view bytes, const std::string& name) {
    reader.Read(bytes);
    if (reader.Problems().Count(Severity::Error) != 0)
        throw BadInput(name, reader.Problems().InOrder());
    return reader.Take();
}

/// Reads the run and the place of a result, and what the run tells of the device.
void ReadJournalledRun(const ResultNames& names, std::string_view table, TextPool& texts,
                       Result& result) {
    const std::filesystem::path path = PathOf(*names.journal);
    std::error_code ignored;
    std::ifstream file;
    // Opening a pipe would wait for somebody who writes into it.
    if (std::filesystem::is_regular_file(path, ignored))
        file.open(path, std::ios::binary);
    if (!file.is_open())
        throw BadInput(*names.journal, "cannot be read");
    JournalReader journal(file, *names.journal);
    RunRecord record = ReadRunRecord(*names.facts);
    ResultReader reader(texts, &journal, record.linesTotal == std::size_t{0});
    result.run = Parse(reader, table, names.table);
    result.run.earlyEnd = record.EarlyEndAfter(result.run.configurations.size() - reader.NotRun());
    result.run.sources = std::move(record.sources);
    result.place = std::move(record.place);
    if (record.isOfNoRun)
        result.device.whyUnknown = "no run has asked a daemon";
}

} // namespace

std::vector<std::string> ResultNames::All() const {
    std::vector<std::string> names{table};
    for (const std::optional<std::string>& name : {tree, journal, facts}) {
        if (name)
            names.push_back(*name);
    }
    return names;
}

ResultNames NamesOf(const std::string& result) {
    if (result == StandardStreamName)
        return {result, std::nullopt};
    const std::filesystem::path path = PathOf(result);
    std::error_code ignored;
    const bool isFolder = std::filesystem::is_directory(path, ignored);
    const std::filesystem::path folder = isFolder ? path : path.parent_path();
    ResultNames names{isFolder ? NameOf(folder / tableName) : result,
                      NameOf(folder / "result.xml")};
    // Another file beside a journal is none of its run.
    const bool isOfRun = isFolder || path.filename() == tableName;
    if (isOfRun && std::filesystem::exists(folder / "journal.jsonl", ignored)) {
        names.journal = NameOf(folder / "journal.jsonl");
        names.facts = NameOf(folder / "run.json");
    }
    return names;
}

Result ReadResult(const ResultNames& names, std::istream& standardInput, TextPool& texts) {
    Result result;
    const std::string table = ReadInput(names.table, standardInput);
    result.device = names.tree ? ReadResultTree(*names.tree)
                               : DeviceFacts{std::nullopt, "standard input has no result.xml"};
    if (names.journal)
        ReadJournalledRun(names, table, texts, result);
    else
        result.run = ParseResult(table, names.table, texts);
    return result;
}

RunResult ParseResult(std::string_view bytes, const std::string& name, TextPool& texts,
                      JournalReader* pJournal) {
    ResultReader reader(texts, pJournal);
    return Parse(reader, bytes, name);
}

} // namespace Bench
