#include "Tools/SarvexTool/Bench/Files/RunRecord.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/JsonFields.h"
#include "Tools/SarvexTool/Bench/Files/RunSourceFields.h"

#include <filesystem>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <system_error>
#include <utility>
#include <vector>

namespace Bench {

namespace {

Sources SourcesOf(const JsonFields& facts) {
    std::vector<Source> sources;
    if (facts.Has("sources")) {
        for (const JsonFields& source : facts.Objects("sources"))
            sources.push_back({LinesOf(source), PlaceOf(source)});
    } else if (const RunPlace place = PlaceOf(facts); place != RunPlace()) {
        sources.push_back({{1, std::numeric_limits<LineNumber>::max()}, place});
    }
    return Sources(std::move(sources));
}

RunRecord RecordOf(const JsonFields& facts) {
    RunRecord record;
    if (facts.Has("linesTotal"))
        record.linesTotal = static_cast<std::size_t>(facts.Count("linesTotal"));
    else
        record.isCalledComplete = facts.Has("outcome") && facts.Text("outcome") == "complete";
    record.isOfNoRun = facts.Has("sources") && facts.Objects("sources").empty();
    record.sources = SourcesOf(facts);
    record.place = PlaceOf(facts);
    return record;
}

} // namespace

std::optional<EarlyEnd> RunRecord::EarlyEndAfter(std::size_t journalledLines) const {
    const bool isComplete = linesTotal ? journalledLines >= *linesTotal : isCalledComplete;
    return isComplete ? std::nullopt : std::optional(EarlyEnd{journalledLines, linesTotal});
}

RunRecord ReadRunRecord(const std::string& factsName) {
    std::error_code ignored;
    if (!std::filesystem::exists(PathOf(factsName), ignored))
        return {};
    // Opening a pipe would wait for somebody who writes into it.
    if (!std::filesystem::is_regular_file(PathOf(factsName), ignored))
        throw BadInput(factsName, "cannot be read");
    std::istringstream noStandardInput;
    const std::string text = ReadInput(factsName, noStandardInput);
    try {
        return RecordOf(JsonFields::Parse(text));
    } catch (const std::invalid_argument& wrong) {
        throw BadInput(factsName, wrong.what());
    }
}

} // namespace Bench
