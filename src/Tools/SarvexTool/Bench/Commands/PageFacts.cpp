#include "Tools/SarvexTool/Bench/Commands/PageFacts.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/UtcTime.h"

namespace Bench {

namespace {

std::string CountryCodeOf(const DeviceFacts& device) {
    return device.countryCode ? *device.countryCode : "not known: " + device.whyUnknown;
}

std::string WrittenAt(const ResultNames& names) {
    return LastWritten(names.table).value_or("not known");
}

/// "5 of 12: the run is not complete"
std::string LinesOf(const EarlyEnd& earlyEnd) {
    const std::string total =
        earlyEnd.linesTotal ? " of " + std::to_string(*earlyEnd.linesTotal) : "";
    return std::to_string(earlyEnd.linesDone) + total + ": the run is not complete";
}

/// What the parts of a place are called.
struct PlaceNames {
    const char* bench;
    const char* device;
    const char* attempt;
};

void AddPlace(std::vector<PageFact>& facts, const RunPlace& place, const PlaceNames& names) {
    if (place.bench)
        facts.push_back({names.bench, *place.bench});
    if (place.device)
        facts.push_back({names.device, *place.device});
    if (place.attempt)
        facts.push_back({names.attempt, std::to_string(*place.attempt)});
}

} // namespace

std::string SubjectOf(const std::string& name) {
    return name == StandardStreamName ? "standard input" : name;
}

std::vector<PageFact> FactsOf(const ResultNames& names, const Result& result) {
    std::vector<PageFact> facts{{"Result written", WrittenAt(names)},
                                {"Country code", CountryCodeOf(result.device)}};
    AddPlace(facts, result.place, {"Bench", "Device", "Attempt"});
    if (result.run.earlyEnd)
        facts.push_back({"Lines run", LinesOf(*result.run.earlyEnd)});
    return facts;
}

std::vector<PageFact> FactsOfBaseline(const ResultNames& names, const Result& result) {
    std::vector<PageFact> facts{{"Baseline", SubjectOf(names.table)}};
    // A kept run is no file; its name tells when it was measured.
    if (const std::optional<std::string> written = LastWritten(names.table))
        facts.push_back({"Baseline written", *written});
    facts.push_back({"Baseline's country code", CountryCodeOf(result.device)});
    AddPlace(facts, result.place, {"Baseline's bench", "Baseline's device", "Baseline's attempt"});
    if (result.run.earlyEnd)
        facts.push_back({"Baseline's lines run", LinesOf(*result.run.earlyEnd)});
    return facts;
}

} // namespace Bench
