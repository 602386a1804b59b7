#include "Tools/SarvexTool/Bench/Output/HistoryJson.h"

#include "Tools/SarvexTool/Bench/Output/JsonWriter.h"
#include "Tools/SarvexTool/Bench/Output/ShownTime.h"

#include <optional>
#include <string>

namespace Bench {

namespace {

/// Changed when a reader of the older form would misunderstand the newer one.
constexpr std::size_t formVersion = 1;

void WriteText(JsonWriter& json, const char* key, const std::optional<std::string>& text) {
    json.Key(key);
    if (text)
        json.Text(*text);
    else
        json.Null();
}

void WritePart(JsonWriter& json, const RunPlace& part) {
    json.BeginObject();
    WriteText(json, "bench", part.bench);
    WriteText(json, "device", part.device);
    json.Key("attempt");
    if (part.attempt)
        json.Count(*part.attempt);
    else
        json.Null();
    json.EndObject();
}

void WriteNames(JsonWriter& json, const KeptFacts& run,
                const std::vector<KeptBaseline>& baselines) {
    json.Key("baselines").BeginArray();
    for (const KeptBaseline& baseline : baselines) {
        if (baseline.hash == run.hash)
            json.Text(baseline.name);
    }
    json.EndArray();
}

void WriteFacts(JsonWriter& json, const KeptFacts& run,
                const std::vector<KeptBaseline>& baselines) {
    json.Key("hash").Text(run.hash);
    json.Key("name").Text(run.name);
    json.Key("measuredAt").Text(IsoTime(run.measuredAt));
    json.Key("keptAt").Text(IsoTime(run.keptAt));
    WriteText(json, "bench", run.bench);
    WriteText(json, "device", run.device);
    json.Key("parts").BeginArray();
    for (const RunPlace& part : run.parts)
        WritePart(json, part);
    json.EndArray();
    WriteText(json, "firmware", run.firmware);
    WriteText(json, "note", run.note);
    WriteText(json, "user", run.user);
    WriteText(json, "host", run.host);
    WriteText(json, "daemon", run.daemon);
    json.Key("macType");
    if (run.macType)
        json.Number(Decimal::FromUnits(std::int64_t{*run.macType} * 1'000'000'000));
    else
        json.Null();
    WriteText(json, "countryCode", run.countryCode);
    WriteText(json, "testFileSha256", run.testFileSha256);
    WriteText(json, "outcome", run.outcome);
    json.Key("verdict").Text(NameOf(run.verdict));
    json.Key("lines").Count(run.lines);
    json.Key("measurements").Count(run.measurements);
    json.Key("measured").Count(run.measured);
    WriteNames(json, run, baselines);
}

} // namespace

void WriteRunsJson(std::ostream& stream, const std::vector<KeptFacts>& runs,
                   const std::vector<KeptBaseline>& baselines) {
    JsonWriter json(stream);
    json.BeginObject();
    json.Key("version").Count(formVersion);
    json.Key("runs").BeginArray();
    for (const KeptFacts& run : runs) {
        json.BreakLine();
        json.BeginObject();
        WriteFacts(json, run, baselines);
        json.EndObject();
    }
    json.EndArray();
    json.EndObject();
    json.Finish();
}

void WriteRunJson(std::ostream& stream, const KeptFacts& run, const std::vector<KeptFile>& files,
                  const std::vector<KeptBaseline>& baselines) {
    JsonWriter json(stream);
    json.BeginObject();
    json.Key("version").Count(formVersion);
    WriteFacts(json, run, baselines);
    json.Key("files").BeginArray();
    for (const KeptFile& file : files) {
        json.BreakLine();
        json.BeginObject();
        json.Key("name").Text(file.name);
        json.Key("size").Count(file.size);
        json.Key("sha256").Text(file.sha256);
        json.EndObject();
    }
    json.EndArray();
    json.EndObject();
    json.Finish();
}

void WriteBaselinesJson(std::ostream& stream, const std::vector<KeptBaseline>& baselines) {
    JsonWriter json(stream);
    json.BeginObject();
    json.Key("version").Count(formVersion);
    json.Key("baselines").BeginArray();
    for (const KeptBaseline& baseline : baselines) {
        json.BreakLine();
        json.BeginObject();
        json.Key("name").Text(baseline.name);
        json.Key("run").Text(baseline.hash);
        json.EndObject();
    }
    json.EndArray();
    json.EndObject();
    json.Finish();
}

} // namespace Bench
