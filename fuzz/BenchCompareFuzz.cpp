// Property: two runs that can be read have a measurement for each chain that a row's settings name.
// Those that a comparison pairs have the same settings and chain, and a run does not differ from
// itself. Whatever the texts are, nothing of them reaches a terminal as a control, JSON, XML and
// HTML as syntax.
//
// Input: a group with the new result, then one with the old one; both without their headers' last
// two titles, which are added.

#include "Tools/SarvexTool/Bench/Core/Differences.h"
#include "Tools/SarvexTool/Bench/Files/ResultFile.h"
#include "Tools/SarvexTool/Bench/Output/Json.h"
#include "Tools/SarvexTool/Bench/Output/Junit.h"
#include "Tools/SarvexTool/Bench/Output/Page/Page.h"
#include "Tools/SarvexTool/Bench/Output/Problems.h"
#include "Tools/SarvexTool/Bench/Output/Text.h"
#include "fuzz/Support/Check.h"
#include "fuzz/Support/Input.h"
#include "fuzz/Support/Outputs.h"

#include <algorithm>
#include <sstream>

namespace {

std::string WithPowerTitles(const std::string& result) {
    const std::size_t end = std::min(result.find('\n'), result.size());
    return result.substr(0, end) + PowerTest::powerTitles + result.substr(end);
}

void CheckChains(const Bench::RunResult& run) {
    std::vector<std::string> chains(run.configurations.size());
    for (const Bench::Measurement& measurement : run.measurements)
        chains[measurement.configuration] += NameOf(measurement.chain);
    for (std::size_t index = 0; index < chains.size(); ++index) {
        const std::string* const named = run.configurations[index].settings[Bench::Setting::Chains];
        const bool isKnown = named != nullptr && (*named == "A" || *named == "B" || *named == "AB");
        Check(isKnown ? chains[index] == *named : !chains[index].empty(),
              "each chain that is named has a measurement");
    }
}

/// The run; nothing when its file is no result, whose problems are shown then.
std::optional<Bench::RunResult> Read(const std::string& result, Bench::TextPool& texts) {
    try {
        Bench::RunResult run = Bench::ParseResult(EndLastLine(result), "result.csv", texts);
        CheckChains(run);
        return run;
    } catch (const Bench::BadInput& bad) {
        Check(!bad.Problems().empty(), "what cannot be read has a reason");
        std::ostringstream stream;
        Bench::PrintProblems({stream}, bad.File(), bad.Problems());
        CheckTerminalText(stream.str());
        return std::nullopt;
    }
}

void CheckPairs(const Bench::ComparedRuns& compared) {
    const Bench::RunResult& oldRun = compared.oldResult.run;
    const Bench::RunResult& newRun = compared.newResult.run;
    const Bench::Differences& differences = compared.differences;
    std::size_t pairs = 0;
    for (std::size_t place = 0; place < differences.oldOfNew.size(); ++place) {
        if (!differences.oldOfNew[place])
            continue;
        ++pairs;
        const Bench::Measurement& oldOne = oldRun.measurements[*differences.oldOfNew[place]];
        const Bench::Measurement& newOne = newRun.measurements[place];
        Check(oldOne.chain == newOne.chain &&
                  oldRun.SettingsOf(oldOne) == newRun.SettingsOf(newOne),
              "measurements of a pair are the same");
    }
    CheckEqual(differences.pairs, pairs, "all pairs are counted");
}

template <typename Write>
std::string Written(const Write& write) {
    std::ostringstream stream;
    write(stream);
    return stream.str();
}

/// A page on which no text of an input is.
const std::string& PlainPage() {
    static const Bench::RunResult run;
    static const std::string page = Written([](std::ostream& stream) {
        Bench::WritePage(Bench::Page{"Report", "result.csv", {}, run}, stream);
    });
    return page;
}

void CheckOutputs(const Bench::ComparedRuns& compared) {
    const Bench::RunResult& oldRun = compared.oldResult.run;
    const Bench::RunResult& newRun = compared.newResult.run;
    CheckTerminalText(
        Written([&](std::ostream& stream) { Bench::PrintDifferences({stream}, compared); }));
    CheckJson(Written([&](std::ostream& stream) { Bench::WriteJson(stream, compared); }));
    CheckXml(Written([&](std::ostream& stream) { Bench::WriteJunit(stream, compared); }),
             "testcase",
             newRun.measurements.size() + oldRun.measurements.size() - compared.differences.pairs);
    const Bench::PageBaseline baseline{oldRun, compared.differences, compared.tolerance};
    const std::string* const first = newRun.configurations[0].settings[Bench::Setting::Band];
    const std::string text = first == nullptr ? "result.csv" : *first;
    const Bench::Page page{text, text, {{text, text}}, newRun, nullptr, &baseline};
    CheckPage(Written([&](std::ostream& stream) { Bench::WritePage(page, stream); }), PlainPage());
}

} // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const Parts groups(ToText(data, size), GroupSeparator);
    Bench::TextPool texts;
    const std::optional<Bench::RunResult> newRun = Read(WithPowerTitles(groups[0]), texts);
    const std::optional<Bench::RunResult> oldRun = Read(WithPowerTitles(groups[1]), texts);
    if (!newRun)
        return 0;
    const Bench::RunResult& compareWith = oldRun ? *oldRun : *newRun;
    const Bench::Decimal tolerance = *Bench::Decimal::Parse("0.5");
    const Bench::Differences differences = Bench::Compare(compareWith, *newRun, tolerance);
    const Bench::DeviceFacts device{std::nullopt, "result.xml is missing"};
    const Bench::ComparedRuns compared{
        {"old.csv", compareWith, device}, {"new.csv", *newRun, device}, tolerance, differences};
    CheckPairs(compared);
    if (!oldRun)
        Check(differences.all.empty(), "a run does not differ from itself");
    CheckOutputs(compared);
    return 0;
}
