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

} // namespace

std::string SubjectOf(const std::string& name) {
    return name == StandardStreamName ? "standard input" : name;
}

std::vector<PageFact> FactsOf(const ResultNames& names, const DeviceFacts& device) {
    return {{"Result written", WrittenAt(names)}, {"Country code", CountryCodeOf(device)}};
}

std::vector<PageFact> FactsOfBaseline(const ResultNames& names, const DeviceFacts& device) {
    return {{"Baseline", SubjectOf(names.table)},
            {"Baseline written", WrittenAt(names)},
            {"Baseline's country code", CountryCodeOf(device)}};
}

} // namespace Bench
