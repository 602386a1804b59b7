#include "Tools/SarvexTool/Bench/Output/TrendJson.h"

#include "Tools/SarvexTool/Bench/Output/JsonWriter.h"
#include "Tools/SarvexTool/Bench/Output/ShownTime.h"
#include "Tools/SarvexTool/Bench/Output/TrendConclusion.h"

#include <array>

namespace Bench {

namespace {

/// Changed when a reader of the older form would misunderstand the newer one.
constexpr std::size_t formVersion = 1;

constexpr std::array<const char*, 4> basisNames{"nothing", "own mean", "two stations", "stations"};

void WriteVisit(JsonWriter& json, const TrendVisit& visit) {
    json.Key("run").Text(visit.run);
    json.Key("measuredAt").Text(IsoTime(visit.measuredAt));
    json.Key("device");
    if (visit.device.empty())
        json.Null();
    else
        json.Text(visit.device);
}

void WritePoint(JsonWriter& json, const TrendData& data, const TrendPoint& point) {
    json.BreakLine();
    json.BeginObject();
    WriteVisit(json, data.visits[point.visit]);
    json.Key("median").Number(point.median);
    json.Key("differences").Count(point.count);
    json.Key("beyond").Bool(point.isBeyond);
    json.EndObject();
}

void WriteControlLimits(JsonWriter& json, const StationTrend& station) {
    const std::optional<ControlLimits>& limits = station.limits;
    json.Key("controlLimits");
    if (!limits) {
        json.Null();
        return;
    }
    json.BeginObject();
    json.Key("mean").Number(limits->mean);
    json.Key("sigma").Number(limits->sigma);
    json.Key("lower").Number(limits->Lower());
    json.Key("upper").Number(limits->Upper());
    json.Key("leftOut").Count(station.leftOut);
    json.EndObject();
}

void WriteDrift(JsonWriter& json, const TrendData& data, const StationTrend& station) {
    json.Key("drift");
    if (!station.drift) {
        json.Null();
        return;
    }
    const auto timeOf = [&](std::size_t place) {
        return IsoTime(data.visits[station.points[place].visit].measuredAt);
    };
    json.BeginObject();
    json.Key("since").Text(timeOf(station.drift->first));
    json.Key("until").Text(timeOf(station.drift->last));
    json.Key("goesOn").Bool(station.drift->goesOn);
    json.Key("change").Number(station.drift->change);
    json.Key("lasting").Bool(station.drift->isLasting);
    json.EndObject();
}

void WriteOffset(JsonWriter& json, const StationTrend& station) {
    json.Key("offset");
    if (station.offset)
        json.Number(*station.offset);
    else
        json.Null();
    json.Key("apart").Bool(station.isApart);
}

void WriteTexts(JsonWriter& json, const char* key, const std::vector<std::string>& texts) {
    json.Key(key).BeginArray();
    for (const std::string& text : texts)
        json.Text(text);
    json.EndArray();
}

void WriteStation(JsonWriter& json, const NamedTrend& named, const StationTrend& station) {
    const TrendStation& told = named.data.stations[station.station];
    json.BreakLine();
    json.BeginObject();
    json.Key("station").Text(told.name);
    WriteTexts(json, "devices", told.devices);
    WriteTexts(json, "firmwares", told.firmwares);
    json.Key("says").Text(PhraseOf(named.data, station));
    WriteOffset(json, station);
    json.Key("behind").Bool(station.isBehind);
    json.Key("hasRunSince").Bool(station.hasRunSince);
    json.Key("lost").Count(station.lost);
    json.Key("timesAsErratic").Number(station.timesAsErratic);
    WriteControlLimits(json, station);
    json.Key("runsBeyond").Count(station.beyond);
    WriteDrift(json, named.data, station);
    json.Key("powers").Count(station.powers);
    if (named.trend.isJudged) {
        json.Key("outOfLimits").Count(station.outOfLimits);
        json.Key("withoutLimit").Count(station.withoutLimit);
    }
    json.BreakLine();
    json.Key("runs").BeginArray();
    for (const TrendPoint& point : station.points)
        WritePoint(json, named.data, point);
    json.EndArray();
    json.EndObject();
}

void WriteLimits(JsonWriter& json, const std::optional<std::string>& limits) {
    json.Key("limits");
    if (limits)
        json.Text(*limits);
    else
        json.Null();
}

void WritePowers(JsonWriter& json, const NamedTrend& named) {
    if (named.powers.empty())
        return;
    const TrendItem& item = named.data.items.front();
    json.BreakLine();
    json.Key("chain").Text(NameOf(item.chain));
    json.Key("settings").BeginObject();
    for (std::size_t index = 0; index < SettingCount; ++index) {
        const auto setting = static_cast<Setting>(index);
        if (item.settings[setting] != nullptr)
            json.Key(NameOf(setting)).Text(*item.settings[setting]);
    }
    json.EndObject();
    json.BreakLine();
    json.Key("powers").BeginArray();
    for (const TrendPower& power : named.powers) {
        const TrendVisit& visit = named.data.visits[power.visit];
        json.BreakLine();
        json.BeginObject();
        WriteVisit(json, visit);
        json.Key("station").Text(named.data.stations[visit.station].name);
        json.Key("power").Number(power.power);
        if (named.trend.isJudged)
            json.Key("outOfLimits").Bool(power.isOut);
        json.EndObject();
    }
    json.BreakLine();
    json.EndArray();
}

} // namespace

void WriteJson(std::ostream& stream, const NamedTrend& named) {
    const TrendConclusion conclusion = ConclusionOf(named.data, named.trend);
    JsonWriter json(stream);
    json.BeginObject();
    json.Key("form").Text("trend");
    json.Key("version").Count(formVersion);
    json.BreakLine();
    json.Key("fine").Bool(named.trend.IsFine());
    json.Key("conclusion").Text(conclusion.word);
    json.BreakLine();
    WriteTexts(json, "says", conclusion.sentences);
    json.BreakLine();
    json.Key("heldAgainst").Text(basisNames.at(static_cast<std::size_t>(named.trend.basis)));
    json.Key("sharedMeasurements").Count(named.trend.sharedItems);
    json.Key("groups").Count(named.trend.groups);
    json.Key("withoutReference").Count(named.trend.withoutReference);
    WriteLimits(json, named.limits);
    json.BreakLine();
    json.Key("stations").BeginArray();
    for (const StationTrend& station : named.trend.stations)
        WriteStation(json, named, station);
    json.BreakLine();
    json.EndArray();
    WritePowers(json, named);
    json.BreakLine();
    json.EndObject();
    json.Finish();
}

} // namespace Bench
