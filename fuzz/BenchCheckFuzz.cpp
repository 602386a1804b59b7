// Property: whatever a test file holds, it is checked and corrected without a crash. When the check
// finds no error, the client's own reader, in the text mode of either system, sets in each line
// exactly the columns that the file shows there, and its command holds each value as one word. A
// corrected copy has as many lines as the file, and where it is without errors its cells are those
// that the file shows, but for "-" in empty ones and a point for a decimal comma. A file without an
// error can be written so that each line says all that the lines up to it say together, as split
// does; the client sets that, and there is no error either.
//
// Input: the test file.

#include "Modules/xFramework/Utilities/Log.h"
#include "Modules/xFramework/Utilities/LogPrinter.h"
#include "Modules/xFramework/Utilities/Singleton.h"
#include "Tools/SarvexTool/Bench/Core/Configurations.h"
#include "Tools/SarvexTool/Bench/Files/Correction.h"
#include "Tools/SarvexTool/Bench/Files/PlanLines.h"
#include "Tools/SarvexTool/Bench/Files/TestFileCheck.h"
#include "Tools/SarvexTool/Client/CliClient.h"
#include "Tools/SarvexTool/Client/Request.h"
#include "Tools/Vemo/VemoClient/DynamicTest/DynamicTest.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"

#include <algorithm>
#include <map>
#include <sstream>

namespace {

using Bench::Severity;
using Lines = std::vector<std::string>;

/// The set columns of a line and their values.
using SetCells = std::map<std::string, std::string>;

constexpr std::uint64_t manyLines = 1000;

Lines LinesOf(const std::string& text) {
    Lines lines;
    std::istringstream stream(text);
    for (std::string line; std::getline(stream, line);)
        lines.push_back(line);
    return lines;
}

/// The text as Windows gives it to a program in text mode.
std::string WindowsText(const std::string& bytes) {
    std::string text;
    for (std::size_t place = 0; place < bytes.size() && bytes[place] != '\x1A'; ++place) {
        if (bytes.compare(place, 2, "\r\n") != 0)
            text += bytes[place];
    }
    return text;
}

std::string WithoutBlanks(const std::string& text) {
    const std::size_t first = text.find_first_not_of(" \t\r");
    return first == std::string::npos
               ? ""
               : text.substr(first, text.find_last_not_of(" \t\r") + 1 - first);
}

/// What each line of a file shows. A title without a text, behind the last column, is none.
std::vector<SetCells> Shown(const Lines& lines) {
    const std::vector<std::string> titles = Split(lines.at(0), ',');
    std::vector<SetCells> shown;
    for (std::size_t line = 1; line < lines.size(); ++line) {
        const std::vector<std::string> cells = Split(lines[line], ',');
        SetCells set;
        for (std::size_t place = 0; place < std::min(titles.size(), cells.size()); ++place) {
            const std::string title = WithoutBlanks(titles[place]);
            const std::string text = WithoutBlanks(cells[place]);
            if (!title.empty() && !text.empty() && text != "-")
                set[title] = text;
        }
        shown.push_back(set);
    }
    return shown;
}

/// What the client sets in each line.
std::vector<SetCells> SetByClient(const Lines& lines) {
    DynamicTest client("test.csv");
    std::ostringstream csv;
    client.ProcessHeaderTestFile(csv, lines.at(0));
    const PowerTest::Fields titles = PowerTest::SplitFields(lines[0]);
    std::vector<SetCells> set;
    for (std::size_t line = 1; line < lines.size(); ++line) {
        const PowerTest::Fields fields = PowerTest::SplitFields(lines[line]);
        SetCells cells;
        for (std::size_t place = 0; place < titles.size(); ++place) {
            if (client.IsColumnSet(titles[place], fields))
                cells[titles[place]] = fields[place];
        }
        set.push_back(cells);
    }
    return set;
}

/// The words of a command, cut at blanks that are not in quotes.
std::vector<std::string> WordsOf(const std::string& command) {
    std::vector<std::string> words;
    bool isQuoted = false;
    bool isInWord = false;
    for (const char character : command) {
        if (character == '"') {
            isQuoted = !isQuoted;
            continue;
        }
        const bool separates = !isQuoted && (character == ' ' || character == '\t');
        if (!separates && !isInWord)
            words.emplace_back();
        if (!separates)
            words.back() += character;
        isInWord = !separates;
    }
    return words;
}

void CheckCommand(const SetCells& cells) {
    CliClient::Arguments arguments;
    std::vector<std::string> expected;
    for (const auto& [column, text] : cells) {
        arguments.emplace_back("-" + column.substr(0, 1));
        arguments.emplace_back(text);
        if (Bench::IsTypedLiteral(text))
            return;
        expected.push_back("-" + column.substr(0, 1));
        expected.push_back(text);
    }
    CliClient client;
    client.SetArguments(arguments);
    const std::string command = client.BuildArguments();
    Check(WordsOf(command) == expected, "each value is one word of the command");
    Check(SarvexTool::BuildRequest("host", command).ends_with("\r\n\r\n" + command),
          "nothing in the command is replaced");
}

void CheckSound(const std::string& bytes, const Bench::CheckedTestFile& checked) {
    for (const std::string& text : {bytes, WindowsText(bytes)}) {
        const Lines lines = LinesOf(text);
        const std::vector<SetCells> set = SetByClient(lines);
        Check(set == Shown(lines), "the client sets what the file shows");
        CheckEqual(checked.plan.configurations, set.size(), "each line is a configuration");
        std::ranges::for_each(set, CheckCommand);
    }
}

/// The texts of a file's cells as they are meant, line by line.
std::vector<std::vector<std::string>> CellsOf(const std::string& bytes) {
    Bench::Table table(bytes, Bench::TestFileRules());
    std::vector<std::vector<std::string>> lines;
    const auto add = [&lines](const Bench::TableRow& row) {
        lines.emplace_back();
        for (const Bench::Cell& cell : row.cells)
            lines.back().emplace_back(cell.text);
    };
    add(table.Header());
    Bench::TableRow row;
    while (table.Read(row))
        add(row);
    return lines;
}

/// A cell as it is to be in a corrected file.
std::string Corrected(const std::string& text, bool isInHeader) {
    if (text.empty() && !isInHeader)
        return "-";
    std::string corrected = text;
    if (Bench::HasDecimalComma(text))
        std::ranges::replace(corrected, ',', '.');
    return corrected;
}

bool HasErrors(const Bench::CheckedTestFile& checked) {
    return checked.problems.Count(Severity::Error) > 0;
}

void CheckCorrection(const std::string& bytes, bool isSound) {
    const std::string corrected = Bench::CorrectTestFile(bytes).bytes;
    if (isSound && bytes.find('\r') == std::string::npos)
        CheckEqual(corrected, bytes, "a sound file stays as it is");
    const auto meant = CellsOf(bytes);
    const auto written = CellsOf(corrected);
    CheckEqual(written.size(), meant.size(), "a corrected file has the lines of the file");
    Bench::TextPool pool;
    if (HasErrors(Bench::CheckTestFile(corrected, pool, manyLines)))
        return;
    // An empty column at the end stays empty.
    std::size_t width = meant.at(0).size();
    while (width > 0 && meant[0][width - 1].empty())
        --width;
    for (std::size_t line = 0; line < meant.size(); ++line) {
        for (std::size_t place = 0; place < std::min(width, meant[line].size()); ++place)
            CheckEqual(written[line].at(place), Corrected(meant[line][place], line == 0),
                       "a corrected file says what the file says");
    }
}

/// The file with all settings written out in each line.
std::string WrittenOut(const std::string& bytes) {
    Bench::TextPool pool;
    Bench::PlanLines plan(bytes, pool);
    Bench::CarriedSettings carried;
    std::string text;
    Bench::AppendHeader(text, plan.Columns());
    Bench::LineNumber line = 0;
    Bench::Settings own;
    while (plan.Read(line, own)) {
        carried.Write(line, own);
        Bench::AppendLine(text, plan.Columns(), carried.Effective());
    }
    return text;
}

void CheckWrittenOut(const std::string& bytes) {
    std::vector<SetCells> expected;
    SetCells all;
    for (const SetCells& own : SetByClient(LinesOf(bytes))) {
        for (const auto& [column, text] : own)
            all[column] = text;
        expected.push_back(all);
    }
    const std::string text = WrittenOut(bytes);
    Check(SetByClient(LinesOf(text)) == expected, "each line says what it comes to");
    Bench::TextPool pool;
    Check(!HasErrors(Bench::CheckTestFile(text, pool, manyLines)), "a chunk is without errors");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    SingletonWrapper<Utilities::LogPrinter>()->SetLevelMask("stream", Utilities::LogLevel::Error);
    const std::string bytes = ToText(data, size);
    Bench::TextPool pool;
    const Bench::CheckedTestFile checked = Bench::CheckTestFile(bytes, pool, manyLines);
    bool isErrorTold = false;
    for (const Bench::Problem& problem : checked.problems.InOrder())
        isErrorTold = isErrorTold || problem.severity == Severity::Error;
    CheckEqual(isErrorTold, HasErrors(checked), "an error that is counted is told");
    if (!HasErrors(checked)) {
        CheckSound(bytes, checked);
        CheckWrittenOut(bytes);
    }
    CheckCorrection(bytes, !HasErrors(checked));
    return 0;
}
