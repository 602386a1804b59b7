// Property: whatever lines a test file has, the result that the client's rules make of them and of
// the powers is read back as just these settings and powers. Any other bytes are read as a result,
// or are refused with a place and a text; what is read is written in all forms. A result tree of
// any bytes gives a country code or says why there is none.
//
// Input: a group with the header and the lines of a test file, one record each, then one with the
// powers of each line, A before B, then one whose first record is a whole result.csv and whose
// second is a result.xml.

#include "Tools/SarvexTool/Bench/Files/ResultFile.h"
#include "Tools/SarvexTool/Bench/Files/ResultTree.h"
#include "Tools/SarvexTool/Bench/Output/Csv.h"
#include "Tools/SarvexTool/Bench/Output/Json.h"
#include "Tools/SarvexTool/Bench/Output/Junit.h"
#include "Tools/SarvexTool/Bench/Output/Text.h"
#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"

#include <algorithm>
#include <map>
#include <nlohmann/json.hpp>
#include <sstream>

namespace {

using namespace Bench;

/// A power that a daemon may report, made from any text; NA for most.
std::string PowerOf(const std::string& text) {
    return Decimal::Parse(text) ? text : "NA";
}

/// The line without the end of lines, which no line of a test file holds.
std::string OneLine(std::string text) {
    std::erase(text, '\n');
    return text;
}

bool IsKnown(const std::string& title) {
    return std::any_of(PowerTest::columnCommands.begin(), PowerTest::columnCommands.end(),
                       [&title](const auto& row) { return title == row.column; });
}

/// What the device is set to with each line by the client's rules, written as plainly as can be.
std::string PlainRows(const std::string& header, const std::vector<std::string>& lines) {
    const PowerTest::Fields titles = PowerTest::SplitFields(header);
    std::map<std::string, std::string> device;
    std::ostringstream text;
    for (std::size_t index = 0; index < lines.size(); ++index) {
        const PowerTest::Fields cells = PowerTest::SplitFields(lines[index]);
        std::map<std::string, std::string> own;
        for (std::size_t place = 0; place < titles.size(); ++place)
            own[titles[place]] = place < cells.size() ? cells[place] : "-";
        for (const auto& [title, cell] : own) {
            if (cell != "-")
                device[title] = cell;
        }
        text << index + 2;
        for (const auto& row : PowerTest::columnCommands) {
            const auto found = device.find(row.column);
            text << "," << (found == device.end() ? "unknown" : "=" + found->second);
        }
        text << "\n";
    }
    return text.str();
}

std::string ReadRows(const RunResult& run) {
    std::ostringstream text;
    for (const Configuration& configuration : run.configurations) {
        text << configuration.line;
        for (const std::string* const value : configuration.settings)
            text << "," << (value == nullptr ? "unknown" : "=" + *value);
        text << "\n";
    }
    return text.str();
}

void CheckWrittenResult(const std::string& header, const std::vector<std::string>& lines,
                        const Parts& powers) {
    const PowerTest::Fields titles = PowerTest::SplitFields(header);
    if (lines.empty() || !std::all_of(titles.begin(), titles.end(), IsKnown))
        return;
    std::string csv = header + PowerTest::powerTitles + "\n";
    std::size_t reported = 0;
    for (std::size_t index = 0; index < lines.size(); ++index) {
        const std::string powerA = PowerOf(powers[2 * index]);
        const std::string powerB = PowerOf(powers[2 * index + 1]);
        csv += lines[index] + "," + powerA + "," + powerB + "\n";
        reported += std::size_t{powerA != "NA"} + std::size_t{powerB != "NA"};
    }
    TextPool texts;
    const RunResult run = ParseResult(csv, "result.csv", texts);
    CheckEqual(ReadRows(run), PlainRows(header, lines),
               "a result's settings are those of the test file");
    std::size_t read = run.unexpectedPowers;
    for (const Measurement& measurement : run.measurements)
        read += std::size_t{measurement.power.has_value()};
    Check(read <= reported, "no power is read that was not reported");
}

void CheckOutputs(const RunResult& run) {
    LimitTable table({{Limit()}, {}});
    const Judgements judgements = Judge(run, table);
    const DeviceFacts device;
    const JudgedRun judged{{"result.csv", run, device}, "limits.csv", judgements};
    std::ostringstream text;
    PrintJudgements({text}, judged);
    WriteCsv(text, judged);
    WriteJunit(text, judged);
    const std::string all = text.str();
    Check(std::all_of(
              all.begin(), all.end(),
              [](char byte) { return byte == '\n' || static_cast<unsigned char>(byte) >= ' '; }),
          "no control byte reaches a text");
    std::ostringstream json;
    WriteJson(json, judged);
    CheckEqual(nlohmann::json::parse(json.str())["measurements"].size(), run.measurements.size(),
               "JSON holds every measurement");
    Check(Compare(run, run, Decimal()).all.empty(), "a run is like itself");
}

void CheckAnyResult(const std::string& bytes) {
    TextPool texts;
    try {
        const RunResult run = ParseResult(bytes, "result.csv", texts);
        Check(!run.measurements.empty(), "a result that is read has a measurement");
        CheckOutputs(run);
    } catch (const BadInput& bad) {
        Check(!bad.Problems().empty(), "a result that is refused has a problem");
    }
}

void CheckTree(const std::string& bytes) {
    std::istringstream stream(bytes);
    const DeviceFacts facts = ReadResultTree(stream);
    Check(facts.countryCode.has_value() == facts.whyUnknown.empty(),
          "a country code is known, or it is said why not");
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Parts groups(ToText(data, size), GroupSeparator);
    std::vector<std::string> lines = Split(groups[0], RecordSeparator);
    std::transform(lines.begin(), lines.end(), lines.begin(), OneLine);
    const std::string header = lines.front();
    lines.erase(lines.begin());
    CheckWrittenResult(header, lines, Parts(groups[1], RecordSeparator));
    const Parts files(groups[2], RecordSeparator);
    CheckAnyResult(files[0]);
    CheckTree(files[1]);
    return 0;
}
