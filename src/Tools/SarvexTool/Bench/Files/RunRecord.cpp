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
#include <utility>
#include <vector>

namespace Bench {

namespace {

std::optional<EarlyEnd> EarlyEndOf(const JsonFields& facts, std::size_t journalledLines) {
    if (facts.Has("linesTotal")) {
        const auto total = static_cast<std::size_t>(facts.Count("linesTotal"));
        return journalledLines < total ? std::optional(EarlyEnd{journalledLines, total})
                                       : std::nullopt;
    }
    if (facts.Has("outcome") && facts.Text("outcome") == "complete")
        return std::nullopt;
    return EarlyEnd{journalledLines, std::nullopt};
}

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

} // namespace

std::optional<EarlyEnd> ReadEarlyEnd(const std::string& factsName, std::size_t journalledLines) {
    std::error_code ignored;
    if (!std::filesystem::exists(PathOf(factsName), ignored))
        return EarlyEnd{journalledLines, std::nullopt};
    if (!std::filesystem::is_regular_file(PathOf(factsName), ignored))
        throw BadInput(factsName, "cannot be read");
    std::istringstream noStandardInput;
    const std::string text = ReadInput(factsName, noStandardInput);
    try {
        return EarlyEndOf(JsonFields::Parse(text), journalledLines);
    } catch (const WrongJson& wrong) {
        throw BadInput(factsName, wrong.what());
    }
}

RunPlace ReadPlace(const std::string& factsName) {
    std::error_code ignored;
    if (!std::filesystem::exists(PathOf(factsName), ignored))
        return {};
    std::istringstream noStandardInput;
    const std::string text = ReadInput(factsName, noStandardInput);
    try {
        return PlaceOf(JsonFields::Parse(text));
    } catch (const WrongJson& wrong) {
        throw BadInput(factsName, wrong.what());
    }
}

Sources ReadSources(const std::string& factsName) {
    std::error_code ignored;
    if (!std::filesystem::exists(PathOf(factsName), ignored))
        return {};
    std::istringstream noStandardInput;
    const std::string text = ReadInput(factsName, noStandardInput);
    try {
        return SourcesOf(JsonFields::Parse(text));
    } catch (const std::invalid_argument& wrong) {
        throw BadInput(factsName, wrong.what());
    }
}

} // namespace Bench
