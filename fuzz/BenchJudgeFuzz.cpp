// Property: each measurement is held against the first line of the limits whose cells fit it, read
// anew by the rules, and its verdict is the one of that line's bounds. The lines that fitted
// nothing are those that a walk through all lines finds. Whatever the texts are, nothing of them
// reaches a terminal as a control, CSV as a formula, JSON and XML as syntax.
//
// Input: a group with the limits, then one with the result, without its header's last two titles,
// which are added.

#include "Tools/SarvexTool/Bench/Core/Verdicts.h"
#include "Tools/SarvexTool/Bench/Files/LimitsFile.h"
#include "Tools/SarvexTool/Bench/Files/ResultFile.h"
#include "Tools/SarvexTool/Bench/Output/Csv.h"
#include "Tools/SarvexTool/Bench/Output/Json.h"
#include "Tools/SarvexTool/Bench/Output/Junit.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"
#include "Tools/SarvexTool/Bench/Output/Text.h"
#include "Tools/Vemo/VemoClient/DynamicTest/TestFile.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"
#include "fuzz/Support/Outputs.h"

#include <algorithm>
#include <map>
#include <sstream>

namespace {

using Bench::Decimal;

/// A line of limits: its cells by their titles.
using PlainLimit = std::map<std::string, std::string>;

std::vector<PlainLimit> LimitsOf(const std::string& text) {
    std::vector<std::string> lines = Split(text, '\n');
    if (lines.back().empty())
        lines.pop_back();
    const PowerTest::Fields titles = PowerTest::SplitFields(lines[0]);
    std::vector<PlainLimit> limits;
    for (std::size_t line = 1; line < lines.size(); ++line) {
        const PowerTest::Fields cells = PowerTest::SplitFields(lines[line]);
        PlainLimit& limit = limits.emplace_back();
        for (std::size_t place = 0; place < titles.size(); ++place)
            limit[titles[place]] = cells.at(place);
    }
    return limits;
}

bool FitsItem(const std::string& item, const std::string& value) {
    const std::size_t dots = item.find("..");
    if (dots == std::string::npos)
        return PowerTest::TrimField(item) == value;
    const auto number = Decimal::Parse(value);
    const auto first = Decimal::Parse(PowerTest::TrimField(item.substr(0, dots)));
    const auto last = Decimal::Parse(PowerTest::TrimField(item.substr(dots + 2)));
    return number && *first <= *number && *number <= *last;
}

bool FitsCell(const std::string& cell, const std::string* value) {
    if (cell == "*")
        return true;
    const std::vector<std::string> items = Split(cell, '|');
    return value != nullptr && std::ranges::any_of(items, [value](const std::string& item) {
               return FitsItem(item, *value);
           });
}

bool FitsPlainly(const PlainLimit& limit, const Bench::Settings& settings, Bench::Chain chain) {
    const std::string& chains = limit.at("Chain");
    if (chains != "*" && chains != "A|B" && chains != NameOf(chain))
        return false;
    return std::ranges::all_of(limit, [&settings](const auto& cell) {
        for (std::size_t index = 0; index < Bench::SettingCount; ++index) {
            const auto setting = static_cast<Bench::Setting>(index);
            if (cell.first == NameOf(setting))
                return FitsCell(cell.second, settings[setting]);
        }
        return true;
    });
}

std::string PlainVerdict(const Bench::Measurement& measurement, const PlainLimit* limit) {
    if (!measurement.power)
        return "not measured";
    if (limit == nullptr)
        return "no limit";
    // "*" is no decimal.
    const auto minimum = Decimal::Parse(limit->at("Min"));
    const auto maximum = Decimal::Parse(limit->at("Max"));
    if (minimum && *measurement.power < *minimum)
        return "too low";
    return maximum && *measurement.power > *maximum ? "too high" : "pass";
}

void CheckJudgements(const Bench::Judgements& judgements, const Bench::RunResult& run,
                     Bench::LimitTable& table, const std::vector<PlainLimit>& limits) {
    std::vector<bool> hasFitted(limits.size());
    CheckEqual(judgements.all.size(), run.measurements.size(), "each measurement is judged");
    for (const Bench::Judgement& judgement : judgements.all) {
        const Bench::Measurement& measurement = run.measurements[judgement.measurement];
        const PlainLimit* first = nullptr;
        for (std::size_t index = 0; index < limits.size(); ++index) {
            if (!FitsPlainly(limits[index], run.SettingsOf(measurement), measurement.chain))
                continue;
            hasFitted[index] = true;
            first = first == nullptr ? &limits[index] : first;
        }
        const std::size_t line = first == nullptr ? 0 : std::size_t(first - limits.data()) + 2;
        CheckEqual(judgement.limit == nullptr ? 0 : judgement.limit->line, line,
                   "the first limit that fits counts");
        CheckEqual(std::string(NameOf(judgement.verdict)), PlainVerdict(measurement, first),
                   "the verdict is that of the limit's bounds");
    }
    CheckEqual(table.NeverFitting().size(),
               static_cast<std::size_t>(std::ranges::count(hasFitted, false)),
               "limits that fit nothing are found");
}

template <typename Write>
std::string Written(const Write& write) {
    std::ostringstream stream;
    write(stream);
    return stream.str();
}

void CheckOutputs(const Bench::JudgedRun& judged) {
    const std::size_t count = judged.result.run.measurements.size();
    CheckTerminalText(
        Written([&](std::ostream& stream) { Bench::PrintJudgements({stream}, judged); }));
    CheckJson(Written([&](std::ostream& stream) { Bench::WriteJson(stream, judged); }));
    CheckXml(Written([&](std::ostream& stream) { Bench::WriteJunit(stream, judged); }), "testcase",
             count);
    CheckCsv(Written([&](std::ostream& stream) { Bench::WriteCsv(stream, judged); }), count);
}

void JudgeResult(const std::string& limits, const std::string& result) {
    Bench::TextPool texts;
    Bench::LimitTable table(Bench::ParseLimits(limits, "limits.csv", texts));
    const std::size_t end = std::min(result.find('\n'), result.size());
    const Bench::RunResult run = Bench::ParseResult(
        EndLastLine(result.substr(0, end) + PowerTest::powerTitles + result.substr(end)),
        "result.csv", texts);
    const Bench::Judgements judgements = Bench::Judge(run, table);
    CheckJudgements(judgements, run, table, LimitsOf(limits));
    const Bench::DeviceFacts device{"US", ""};
    CheckOutputs({{"result.csv", run, device}, "limits.csv", judgements});
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Parts groups(ToText(data, size), GroupSeparator);
    try {
        JudgeResult(groups[0], groups[1]);
    } catch (const Bench::BadInput& bad) {
        Check(!bad.Problems().empty(), "what cannot be read has a reason");
        std::ostringstream stream;
        Bench::PrintProblems({stream}, bad.File(), bad.Problems());
        CheckTerminalText(stream.str());
    }
    return 0;
}
