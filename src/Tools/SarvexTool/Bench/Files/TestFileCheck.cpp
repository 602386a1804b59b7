#include "Tools/SarvexTool/Bench/Files/TestFileCheck.h"

#include "Tools/SarvexTool/Bench/Core/Nearest.h"
#include "Tools/SarvexTool/Bench/Files/TableProblems.h"

#include <algorithm>
#include <array>
#include <iterator>
#include <string>
#include <utility>

namespace Bench {

namespace {

/// The type names that the client registers.
constexpr std::array<std::string_view, 14> typeNames{
    "int8",   "uint8", "short", "int16",  "uint16", "int",  "int32",
    "uint32", "long",  "int64", "uint64", "double", "bool", "string"};

/// Whether the cells of a column are filed in result.xml.
constexpr std::array<bool, SettingCount> isFiled = [] {
    std::array<bool, SettingCount> filed{};
    for (std::size_t index = 0; index < SettingCount; ++index) {
        for (const char* const column : PowerTest::resultColumns)
            filed[index] =
                filed[index] || std::string_view(column) ==
                                    std::string_view(PowerTest::columnCommands[index].column);
    }
    return filed;
}();

/// Whether a text has characters that an attribute of XML cannot have as they are.
bool HasMarkup(std::string_view text) {
    // The last two are characters of UTF-8 that XML does not know.
    return text.find_first_of("<&") != std::string_view::npos ||
           text.find("\xEF\xBF\xBE") != std::string_view::npos ||
           text.find("\xEF\xBF\xBF") != std::string_view::npos;
}

/// The nearest chains' name for a text, without a sign between the letters and in whatever order;
/// empty when none is near.
std::string_view NearestChains(std::string_view text) {
    constexpr std::array<const char*, 3> names{"A", "B", "AB"};
    const std::string_view nearest = NearestName(text, names);
    return nearest.empty() ? NearestName(std::string(text.rbegin(), text.rend()), names) : nearest;
}

/// Reads a test file line by line.
class Check {
public:
    Check(std::string_view bytes, TextPool& pool, std::uint64_t mostLines)
        : m_table(bytes, TestFileRules()), m_pool(pool), m_mostLines(mostLines) {
        m_checked.columns = ColumnsOf(m_table);
        TellCarriageReturnColumn(bytes.substr(0, bytes.find('\n')));
    }

    CheckedTestFile Make() {
        TableRow row;
        while (m_table.Read(row))
            CheckRow(row);
        m_checked.plan = m_builder.Take();
        for (const UnsetSetting& unset : m_checked.plan.unset)
            Add(TestFileProblem::unset, unset.line, 0,
                std::string("no line has set ") + NameOf(unset.setting) +
                    " when this one is run, so that the device's own value counts; set it here");
        m_checked.problems = std::move(m_table.Problems());
        return std::move(m_checked);
    }

private:
    /// Spreadsheets save an empty column at the end so.
    void TellCarriageReturnColumn(std::string_view header) {
        if (header.ends_with(",\r"))
            Add(TableProblem::columnName, 1, static_cast<std::uint32_t>(m_table.Width() + 1),
                "the header ends in a comma before its CR LF, so that a client on Linux takes the "
                "CR for the name of a column, and no line has any setting; take the comma away, "
                "or save the file with LF");
    }

    void CheckRow(const TableRow& row) {
        const Settings own = SettingsOf(row, m_checked.columns, m_pool);
        CheckValues(row, own);
        const bool hasSetting = std::any_of(
            own.begin(), own.end(), [](const std::string* pText) { return pText != nullptr; });
        const LineNumber same = m_builder.Add(row.line, own);
        if (!row.cells.empty() && !hasSetting)
            Add(TestFileProblem::noSetting, row.line, 0,
                "the line sets nothing; it is run with the settings as they are");
        else if (same != 0 && hasSetting)
            Add(TestFileProblem::repeat, row.line, 0,
                "the line repeats line " + std::to_string(same));
        if (m_builder.Count() == m_mostLines + 1)
            Add(TestFileProblem::tooManyLines, row.line, 0,
                "this system can carry " + std::to_string(m_mostLines) +
                    " lines in one run of the client; split the file here");
    }

    /// The table tells cells of blanks alone.
    void CheckValues(const TableRow& row, const Settings& own) {
        for (std::size_t index = 0; index < SettingCount; ++index) {
            const auto setting = static_cast<Setting>(index);
            const std::string* const pText = own[setting];
            if (pText != nullptr && pText->find_first_not_of(" \t\r") != std::string::npos)
                CheckValue(setting, *pText, row.line, m_checked.columns[index]);
        }
    }

    void CheckValue(Setting setting, std::string_view text, LineNumber line, std::uint32_t column) {
        if (setting == Setting::Chains && text != "A" && text != "B" && text != "AB")
            TellChains(text, line, column);
        // Most values are plain: none of what follows concerns them.
        if (text.front() != '-' && text.find_first_of("$<&{\xEF") == std::string_view::npos)
            return;
        const std::string cell = "\"" + std::string(text) + "\"";
        if (text.front() == '-')
            Add(TestFileProblem::option, line, column,
                "the daemon would take " + cell +
                    " for an option; a value cannot begin with \"-\"");
        if (text.find("$(") != std::string_view::npos)
            Add(TestFileProblem::variable, line, column,
                "the client would look for a variable to put in the place of \"$(\" in " + cell +
                    "; take it away");
        if (isFiled[static_cast<std::size_t>(setting)] && HasMarkup(text))
            Add(TestFileProblem::markup, line, column,
                cell + " would make result.xml invalid, for the client writes it there as it is; "
                       "take \"<\" and \"&\" away");
        if (IsTypedLiteral(text))
            Add(TestFileProblem::literal, line, column,
                cell + " is a typed literal: the client sends its value; write the value itself");
    }

    void TellChains(std::string_view text, LineNumber line, std::uint32_t column) {
        const std::string_view nearest = NearestChains(text);
        Add(TestFileProblem::chains, line, column,
            "no power is filed for the chains \"" + std::string(text) + "\", only for A, B and AB" +
                (nearest.empty() ? "" : "; did you mean " + std::string(nearest) + "?"));
    }

    void Add(const ProblemKind& kind, LineNumber line, std::uint32_t column, std::string text) {
        m_table.Problems().Add(kind, line, column, std::move(text));
    }

    Table m_table;
    TextPool& m_pool;
    std::uint64_t m_mostLines;
    PlanBuilder m_builder;
    CheckedTestFile m_checked;
};

} // namespace

CheckedTestFile CheckTestFile(std::string_view bytes, TextPool& pool, std::uint64_t mostLines) {
    return Check(bytes, pool, mostLines).Make();
}

bool IsTypedLiteral(std::string_view text) {
    if (text.size() < 2 || text.front() != '{' || text.back() != '}')
        return false;
    const std::string_view inside = text.substr(1, text.size() - 2);
    const std::size_t colon = inside.find(':');
    return colon != std::string_view::npos && colon + 1 < inside.size() &&
           std::find(typeNames.begin(), typeNames.end(), inside.substr(0, colon)) !=
               typeNames.end();
}

} // namespace Bench
