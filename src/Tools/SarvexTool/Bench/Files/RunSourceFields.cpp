#include "Tools/SarvexTool/Bench/Files/RunSourceFields.h"

namespace Bench {

void PutPlace(Json& object, const RunPlace& place) {
    if (place.bench)
        PutText(object, "bench", *place.bench);
    if (place.device)
        PutText(object, "device", *place.device);
    if (place.attempt)
        object["attempt"] = *place.attempt;
}

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

RunPlace PlaceOf(const JsonFields& fields) {
    RunPlace place;
    if (fields.Has("bench"))
        place.bench = fields.Text("bench");
    if (fields.Has("device"))
        place.device = fields.Text("device");
    if (fields.Has("attempt"))
        place.attempt = fields.Line("attempt");
    return place;
}

LineRange LinesOf(const JsonFields& fields) {
    return {fields.Line("firstLine"), fields.Line("lastLine")};
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

} // namespace Bench
