#include "Tools/SarvexTool/Bench/Commands/PageFacts.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/FileTime.h"

namespace Bench {

namespace {

std::string CountryCodeOf(const DeviceFacts& device) {
    return device.countryCode ? *device.countryCode : "not known: " + device.whyUnknown;
}

std::string WrittenAt(const ResultNames& names) {
    return LastWritten(names.table).value_or("not known");
}

/// "5 of 12: the run ended early"
std::string LinesOf(const EarlyEnd& earlyEnd) {
    const std::string total =
        earlyEnd.linesTotal ? " of " + std::to_string(*earlyEnd.linesTotal) : "";
    return std::to_string(earlyEnd.linesDone) + total + ": the run ended early";
}

} // namespace

std::string SubjectOf(const std::string& name) {
    return name == StandardStreamName ? "standard input" : name;
}

std::vector<PageFact> FactsOf(const ResultNames& names, const RunResult& run,
                              const DeviceFacts& device) {
    std::vector<PageFact> facts{{"Result written", WrittenAt(names)},
                                {"Country code", CountryCodeOf(device)}};
    if (run.earlyEnd)
        facts.push_back({"Lines run", LinesOf(*run.earlyEnd)});
    return facts;
}

std::vector<PageFact> FactsOfBaseline(const ResultNames& names, const RunResult& run,
                                      const DeviceFacts& device) {
    std::vector<PageFact> facts{{"Baseline", SubjectOf(names.table)},
                                {"Baseline written", WrittenAt(names)},
                                {"Baseline's country code", CountryCodeOf(device)}};
    if (run.earlyEnd)
        facts.push_back({"Baseline's lines run", LinesOf(*run.earlyEnd)});
    return facts;
}

} // namespace Bench
