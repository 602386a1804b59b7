#include "Tools/SarvexTool/Bench/Output/Json.h"

#include "Tools/SarvexTool/Bench/Core/Summaries.h"
#include "Tools/SarvexTool/Bench/Output/JsonWriter.h"

#include <array>

namespace Bench {

namespace {

/// Changed when a reader of the older form would misunderstand the newer one.
constexpr std::size_t formVersion = 1;

constexpr std::array<const char*, VerdictCount> verdictKeys{"pass", "tooLow", "tooHigh",
                                                            "notMeasured", "noLimit"};
constexpr std::array<const char*, 5> kindNames{"changed", "measuredInOldOnly", "measuredInNewOnly",
                                               "inOldOnly", "inNewOnly"};

void WriteDecimal(JsonWriter& json, const std::optional<Decimal>& number) {
    if (number)
        json.Number(*number);
    else
        json.Null();
}

void WriteText(JsonWriter& json, const std::string* text) {
    if (text != nullptr)
        json.Text(*text);
    else
        json.Null();
}

void WriteEarlyEnd(JsonWriter& json, const EarlyEnd& earlyEnd) {
    json.BeginObject();
    json.Key("linesDone").Count(earlyEnd.linesDone);
    json.Key("linesTotal");
    if (earlyEnd.linesTotal)
        json.Count(*earlyEnd.linesTotal);
    else
        json.Null();
    json.EndObject();
}

void WriteResult(JsonWriter& json, const NamedRun& result) {
    json.BeginObject();
    json.Key("file").Text(result.name);
    json.Key("countryCode");
    WriteText(json, result.device.countryCode ? &*result.device.countryCode : nullptr);
    json.Key("configurations").Count(result.run.configurations.size());
    json.Key("measurements").Count(result.run.measurements.size());
    json.Key("unexpectedPowers").Count(result.run.unexpectedPowers);
    if (result.run.earlyEnd)
        WriteEarlyEnd(json.Key("endedEarly"), *result.run.earlyEnd);
    json.EndObject();
}

void WriteSettings(JsonWriter& json, const Settings& settings) {
    json.Key("settings").BeginObject();
    for (std::size_t index = 0; index < SettingCount; ++index) {
        const auto setting = static_cast<Setting>(index);
        if (settings[setting] != nullptr)
            json.Key(NameOf(setting)).Text(*settings[setting]);
    }
    json.EndObject();
}

/// The power, or why there is none.
void WritePower(JsonWriter& json, const Measurement& measurement) {
    WriteDecimal(json.Key("power"), measurement.power);
    if (measurement.power)
        return;
    json.Key("cause").Text(measurement.reason.CauseName());
    json.Key("reason").Text(measurement.reason.ToText());
}

void WriteCounts(JsonWriter& json, const VerdictCounts& counts, const Judgements& judgements) {
    json.Key("counts").BeginObject();
    for (std::size_t verdict = 0; verdict < VerdictCount; ++verdict)
        json.Key(verdictKeys[verdict]).Count(counts.counts[verdict]);
    json.EndObject();
    WriteDecimal(json.Key("worstMargin"),
                 counts.worst ? judgements.all[*counts.worst].margin : std::nullopt);
}

/// What is known of where a measurement was made.
void WritePlace(JsonWriter& json, const RunPlace* place) {
    if (place == nullptr)
        return;
    if (place->bench)
        json.Key("bench").Text(*place->bench);
    if (place->device)
        json.Key("device").Text(*place->device);
    if (place->attempt)
        json.Key("attempt").Count(*place->attempt);
}

void WriteName(JsonWriter& json, const std::optional<std::string>& name) {
    WriteText(json.Key("name"), name ? &*name : nullptr);
}

void WriteGroupBy(JsonWriter& json, PlacePart part) {
    json.Key("groupBy").Text(NameOf(part));
}

void WriteLimit(JsonWriter& json, const Limit* limit) {
    json.Key("limit");
    if (limit == nullptr) {
        json.Null();
        return;
    }
    json.BeginObject();
    json.Key("line").Count(limit->line);
    WriteDecimal(json.Key("minimum"), limit->minimum);
    WriteDecimal(json.Key("maximum"), limit->maximum);
    json.EndObject();
}

void WriteJudgement(JsonWriter& json, const RunResult& run, const Judgement& judgement) {
    const Measurement& measurement = run.measurements[judgement.measurement];
    json.BreakLine();
    json.BeginObject();
    json.Key("line").Count(run.LineOf(measurement));
    json.Key("chain").Text(NameOf(measurement.chain));
    WriteSettings(json, run.SettingsOf(measurement));
    WritePower(json, measurement);
    json.Key("verdict").Text(NameOf(judgement.verdict));
    WriteLimit(json, judgement.limit);
    WriteDecimal(json.Key("margin"), judgement.margin);
    WritePlace(json, run.PlaceOf(measurement));
    json.EndObject();
}

void WriteSummary(JsonWriter& json, const JudgedRun& judged) {
    const JudgementSummary summary = Summarize(judged.result.run, judged.judgements);
    WriteCounts(json, summary.all, judged.judgements);
    json.BreakLine();
    json.Key("bands").BeginArray();
    for (const VerdictCounts& band : summary.bands) {
        json.BreakLine();
        json.BeginObject();
        WriteText(json.Key("band"), band.band);
        WriteCounts(json, band, judged.judgements);
        json.EndObject();
    }
    json.BreakLine();
    json.EndArray();
}

void WriteGroups(JsonWriter& json, const JudgedRun& judged) {
    if (!judged.groupBy)
        return;
    WriteGroupBy(json, *judged.groupBy);
    json.Key("groups").BeginArray();
    for (const PlaceCounts& group :
         SummarizeBy(*judged.groupBy, judged.result.run, judged.judgements)) {
        json.BreakLine();
        json.BeginObject();
        WriteName(json, group.name);
        WriteCounts(json, group.counts, judged.judgements);
        json.EndObject();
    }
    json.BreakLine();
    json.EndArray();
    json.BreakLine();
}

void WriteGroups(JsonWriter& json, const ComparedRuns& compared) {
    if (!compared.groupBy)
        return;
    json.BreakLine();
    WriteGroupBy(json, *compared.groupBy);
    json.Key("groupShifts").BeginArray();
    for (const PlaceShift& shift : ShiftsBy(*compared.groupBy, compared.oldResult.run,
                                            compared.newResult.run, compared.differences)) {
        json.BreakLine();
        json.BeginObject();
        WriteName(json, shift.name);
        json.Key("pairs").Count(shift.pairs);
        json.Key("mean").Number(shift.mean);
        json.EndObject();
    }
    json.BreakLine();
    json.EndArray();
}

void WriteShifts(JsonWriter& json, const std::vector<Shift>& shifts) {
    json.BreakLine();
    json.Key("shifts").BeginArray();
    for (const Shift& shift : shifts) {
        json.BreakLine();
        json.BeginObject();
        WriteText(json.Key("band"), shift.band);
        WriteText(json.Key("rate"), shift.rate);
        json.Key("pairs").Count(shift.pairs);
        json.Key("mean").Number(shift.mean);
        json.EndObject();
    }
    json.BreakLine();
    json.EndArray();
}

void WriteSide(JsonWriter& json, const char* key, const RunResult& run,
               const std::optional<std::uint32_t>& place) {
    json.Key(key);
    if (!place) {
        json.Null();
        return;
    }
    json.BeginObject();
    json.Key("line").Count(run.LineOf(run.measurements[*place]));
    WritePower(json, run.measurements[*place]);
    WritePlace(json, run.PlaceOf(run.measurements[*place]));
    json.EndObject();
}

void WriteDifference(JsonWriter& json, const ComparedRuns& compared, const Difference& difference) {
    const RunResult& oldRun = compared.oldResult.run;
    const RunResult& newRun = compared.newResult.run;
    const RunResult& run = difference.oldMeasurement ? oldRun : newRun;
    const Measurement& measurement =
        run.measurements[difference.oldMeasurement ? *difference.oldMeasurement
                                                   : *difference.newMeasurement];
    const bool isChange = difference.kind == Difference::Kind::Changed;
    json.BreakLine();
    json.BeginObject();
    json.Key("kind").Text(kindNames.at(static_cast<std::size_t>(difference.kind)));
    json.Key("chain").Text(NameOf(measurement.chain));
    WriteSettings(json, run.SettingsOf(measurement));
    WriteSide(json, "old", oldRun, difference.oldMeasurement);
    WriteSide(json, "new", newRun, difference.newMeasurement);
    WriteDecimal(json.Key("change"), isChange ? std::optional(difference.change) : std::nullopt);
    json.Key("withinNoise").Bool(difference.isWithinNoise);
    json.EndObject();
}

} // namespace

void WriteJson(std::ostream& stream, const JudgedRun& judged) {
    JsonWriter json(stream);
    json.BeginObject();
    json.Key("form").Text("judgement");
    json.Key("version").Count(formVersion);
    json.BreakLine();
    WriteResult(json.Key("result"), judged.result);
    json.BreakLine();
    json.Key("limits").Text(judged.limitsName);
    json.BreakLine();
    json.Key("passed").Bool(judged.judgements.HaveAllPassed());
    WriteSummary(json, judged);
    json.BreakLine();
    WriteGroups(json, judged);
    json.Key("measurements").BeginArray();
    for (const Judgement& judgement : judged.judgements.all)
        WriteJudgement(json, judged.result.run, judgement);
    json.BreakLine();
    json.EndArray();
    json.BreakLine();
    json.EndObject();
    json.Finish();
}

void WriteJson(std::ostream& stream, const ComparedRuns& compared) {
    const Differences& differences = compared.differences;
    JsonWriter json(stream);
    json.BeginObject();
    json.Key("form").Text("comparison");
    json.Key("version").Count(formVersion);
    json.BreakLine();
    WriteResult(json.Key("old"), compared.oldResult);
    json.BreakLine();
    WriteResult(json.Key("new"), compared.newResult);
    json.BreakLine();
    json.Key("tolerance").Number(compared.tolerance);
    json.Key("alike").Bool(differences.AreAlike());
    json.Key("pairs").Count(differences.pairs);
    json.Key("noise");
    if (differences.noise)
        json.Number(*differences.noise);
    else
        json.Null();
    WriteShifts(json, differences.shifts);
    WriteGroups(json, compared);
    json.BreakLine();
    json.Key("differences").BeginArray();
    for (const Difference& difference : differences.all)
        WriteDifference(json, compared, difference);
    json.BreakLine();
    json.EndArray();
    json.BreakLine();
    json.EndObject();
    json.Finish();
}

} // namespace Bench
