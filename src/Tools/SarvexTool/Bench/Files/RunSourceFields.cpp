#include "Tools/SarvexTool/Bench/Files/RunSourceFields.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/RunPlaceFields.h"

#include <filesystem>
#include <limits>
#include <sstream>
#include <stdexcept>
#include <utility>

namespace Bench {

namespace {

LineRange LinesOf(const JsonFields& fields) {
    return {fields.Line("firstLine"), fields.Line("lastLine")};
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

Json ToJson(const RunSource& source) {
    Json json{{"firstLine", source.lines.first}, {"lastLine", source.lines.last}};
    PutText(json, "directory", source.directory);
    PutPlace(json, source.place);
    PutText(json, "daemon", source.daemon);
    if (source.macType)
        json["macType"] = *source.macType;
    if (source.countryCode)
        PutText(json, "countryCode", *source.countryCode);
    json["started"] = source.started;
    if (source.ended)
        json["ended"] = *source.ended;
    return json;
}

Json ToJson(const OtherAttempt& attempt) {
    Json json = ToJson(attempt.run);
    json["linesDone"] = attempt.linesDone;
    PutText(json, "outcome", attempt.outcome);
    return json;
}

RunSource RunSourceOf(const JsonFields& fields) {
    RunSource source;
    source.lines = LinesOf(fields);
    source.directory = fields.Text("directory");
    source.place = PlaceOf(fields);
    source.daemon = fields.Text("daemon");
    if (fields.Has("macType"))
        source.macType = fields.Integer("macType");
    if (fields.Has("countryCode"))
        source.countryCode = fields.Text("countryCode");
    source.started = fields.Text("started");
    if (fields.Has("ended"))
        source.ended = fields.Text("ended");
    return source;
}

OtherAttempt OtherAttemptOf(const JsonFields& fields) {
    return {RunSourceOf(fields), fields.Count("linesDone"), fields.Text("outcome")};
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
