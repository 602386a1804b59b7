#include "Tools/SarvexTool/Bench/Output/TrendConclusion.h"

#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Output/ShownTime.h"
#include "Tools/SarvexTool/Bench/Output/TrendPhrases.h"

#include <algorithm>
#include <iterator>

namespace Bench {

namespace {

const std::string nothingShared = "no station has measured what another one has, so that there is "
                                  "nothing to hold them against";
const std::string fewestRuns = std::to_string(ControlLimits::FewestValues);

std::string DayOf(const TrendData& data, const TrendPoint& point) {
    return ShownDay(data.visits[point.visit].measuredAt);
}

const std::string& NameOf(const TrendData& data, const StationTrend& station) {
    return data.stations[station.station].name;
}

std::string SentenceOf(const TrendData& data, const StationTrend& station) {
    return NameOf(data, station) + " " + PhraseOfPowers(data, station);
}

/// Of several stations, each is told with its share.
std::string OutOfLimits(const TrendData& data, const Trend& trend) {
    const std::size_t out = trend.CountOutOfLimits();
    std::string names;
    std::uint32_t last = 0;
    for (const StationTrend& station : trend.stations) {
        last = std::max(last, station.lastOut);
        if (station.outOfLimits != 0 && trend.stations.size() > 1)
            names += (names.empty() ? "" : ", ") + NameOf(data, station) + " (" +
                     std::to_string(station.outOfLimits) + ")";
    }
    return std::to_string(out) + " of " + Counted(trend.CountPowers(), "power") +
           (out == 1 ? " is" : " are") + " out of " + (out == 1 ? "its" : "their") + " limits, " +
           (out == 1 ? "on " : "the last on ") + ShownDay(data.visits[last].measuredAt) +
           (names.empty() ? "" : ": " + names);
}

/// "none of the 96 powers has a limit", "1 of 96 powers has no limit"
std::string WithoutLimit(const Trend& trend) {
    const std::string powers = Counted(trend.CountPowers(), "power");
    if (trend.HasNoLimit())
        return "none of the " + powers + " has a limit";
    const std::size_t without = trend.CountWithoutLimit();
    return std::to_string(without) + " of " + powers + (without == 1 ? " has" : " have") +
           " no limit";
}

void AddName(std::string& list, const std::string& title, const std::string& name) {
    list += list.empty() ? title : ", ";
    list += name;
}

std::string TooFewRuns(const TrendData& data, const Trend& trend) {
    if (trend.CountTooFew() == trend.stations.size() && trend.stations.size() > 1)
        return "none of the " + std::to_string(trend.stations.size()) + " stations has the " +
               fewestRuns + " runs " + (trend.withoutReference != 0 ? "with shared powers " : "") +
               "that control limits need";
    std::string few;
    std::string alone;
    std::string without;
    for (const StationTrend& station : trend.stations) {
        const std::string& name = NameOf(data, station);
        const std::size_t runs = station.points.size();
        // What was lost is told by itself.
        if (station.limits || station.HasLostAll())
            continue;
        if (runs != 0)
            AddName(few, "too few runs for control limits, which need " + fewestRuns + ": ",
                    name + " (" + std::to_string(runs) + ")");
        else if (station.powers != 0)
            AddName(alone, "nothing that another station has measured: ", name);
        else
            AddName(without, "no power in any run: ", name);
    }
    std::string all;
    for (const std::string& part : {few, alone, without})
        all += (all.empty() || part.empty() ? "" : "; ") + part;
    return all;
}

/// Of the stations that are not called erratic; "" where there are none.
std::string WideLimits(const TrendData& data, const Trend& trend) {
    constexpr double wide = 1;
    std::string list;
    for (const StationTrend& station : trend.stations) {
        if (station.limits && station.timesAsErratic == 0 && station.limits->Distance() > wide)
            AddName(list, "a drift of less than its wide limits does not show: ",
                    NameOf(data, station) + " (" + Hundredths(station.limits->Distance()) + " dB)");
    }
    return list;
}

/// ", offsets from -0.32 dB (B1) to +2.89 dB (B3)", where they compare; else "".
std::string Offsets(const TrendData& data, const Trend& trend) {
    if (trend.groups != 1)
        return "";
    const auto [lowest, highest] =
        std::minmax_element(trend.stations.begin(), trend.stations.end(),
                            [](const StationTrend& left, const StationTrend& right) {
                                return *left.offset < *right.offset;
                            });
    const auto tell = [&data](const StationTrend& station) {
        return SignedHundredths(*station.offset) + " dB (" + NameOf(data, station) + ")";
    };
    return ", offsets from " + tell(*lowest) + " to " + tell(*highest);
}

/// With the widest limits, within which a drift does not show.
std::string Steady(const TrendData& data, const Trend& trend) {
    std::size_t runs = 0;
    for (const StationTrend& station : trend.stations)
        runs += station.points.size();
    const auto widest = std::max_element(trend.stations.begin(), trend.stations.end(),
                                         [](const StationTrend& left, const StationTrend& right) {
                                             return left.limits->sigma < right.limits->sigma;
                                         });
    const std::string distance = Hundredths(widest->limits->Distance()) + " dB";
    const std::size_t count = trend.stations.size();
    const std::string measured =
        Counted(runs, "run") + ", " + Counted(trend.sharedItems, "measurement");
    if (count == 1)
        return "the station does not drift: " + measured + ", limits " + distance +
               " from the mean";
    return "none of the " + std::to_string(count) + " stations drifts: " + measured +
           " that stations share, limits at most " + distance + " from the mean (" +
           NameOf(data, *widest) + ")" + Offsets(data, trend);
}

/// Of the stations with several of the kind.
std::string Mixed(const TrendData& data, std::vector<std::string> TrendStation::*kind,
                  const std::string& what) {
    std::string names;
    for (const TrendStation& station : data.stations) {
        if ((station.*kind).size() > 1)
            names += (names.empty() ? "" : ", ") + station.name;
    }
    return names.empty()
               ? ""
               : "runs of several " + what + "s are mixed, which can hide a drift or look " +
                     "like one (" + names + "); choose one with --" + what;
}

std::vector<std::string> MixedRuns(const TrendData& data) {
    std::vector<std::string> sentences{Mixed(data, &TrendStation::devices, "device"),
                                       Mixed(data, &TrendStation::firmwares, "firmware")};
    std::erase(sentences, "");
    return sentences;
}

bool HaveAllStopped(const Trend& trend) {
    return std::all_of(
        trend.stations.begin(), trend.stations.end(),
        [](const StationTrend& station) { return station.isBehind && !station.hasRunSince; });
}

/// "C has measured nothing that counts since 2026-03-18, though it has run since"
std::vector<std::string> StationsBehind(const TrendData& data, const Trend& trend,
                                        bool hasRunSince) {
    std::vector<std::string> sentences;
    if (!hasRunSince && trend.stations.size() > 1 && HaveAllStopped(trend))
        return {"no station has a run since " + ShownDay(data.visits.back().measuredAt)};
    for (const StationTrend& station : trend.stations) {
        // That a station has lost all is told by itself.
        if (station.isBehind && station.hasRunSince == hasRunSince && !station.HasLostAll())
            sentences.push_back(
                NameOf(data, station) +
                (hasRunSince ? " has measured nothing that counts since " : " has no run since ") +
                DayOf(data, station.points.back()) +
                (hasRunSince ? ", though it has run since" : ""));
    }
    return sentences;
}

TrendConclusion WithoutPower(const TrendData& data) {
    TrendConclusion conclusion{"NO POWER", {}};
    for (const SettingValue& value : data.neverKept)
        conclusion.sentences.push_back("no kept measurement has " +
                                       std::string(NameOf(value.setting)) + " " + value.value);
    if (conclusion.sentences.empty())
        conclusion.sentences.emplace_back(data.hasNoRun
                                              ? "no run is kept, or the filter leaves none"
                                              : "no kept run that the filter leaves has a power");
    return conclusion;
}

/// A sentence for each station of which there is something to say.
template <typename PhraseOf>
std::vector<std::string> OfEach(const TrendData& data, const Trend& trend, PhraseOf phraseOf) {
    std::vector<std::string> sentences;
    for (const StationTrend& station : trend.stations) {
        const std::string phrase = phraseOf(station);
        if (!phrase.empty())
            sentences.push_back(NameOf(data, station) + " " + phrase);
    }
    return sentences;
}

/// What the first line says, where no station drifts.
TrendConclusion WithoutDrift(const TrendData& data, const Trend& trend) {
    if (trend.basis == TrendBasis::Nothing)
        return WithoutPower(data);
    if (trend.CountOutOfLimits() != 0)
        return {"OUT OF LIMITS", {OutOfLimits(data, trend)}};
    if (trend.HasNoLimit())
        return {"NO LIMIT", {WithoutLimit(trend)}};
    if (trend.sharedItems == 0)
        return {"NOTHING SHARED", {nothingShared}};
    if (trend.CountWithLost() != 0)
        return {"NOT MEASURED", OfEach(data, trend, [&data](const StationTrend& station) {
                    return PhraseOfLost(data, station);
                })};
    if (trend.CountNotFollowed() != 0)
        return {"NOT FOLLOWED", StationsBehind(data, trend, true)};
    if (trend.isMixed)
        return {"MIXED RUNS", MixedRuns(data)};
    if (trend.CountTooFew() != 0)
        return {"TOO FEW RUNS", {TooFewRuns(data, trend)}};
    if (trend.CountErratic() != 0)
        return {"ERRATIC", OfEach(data, trend, PhraseOfErratic)};
    return {"STEADY", {Steady(data, trend)}};
}

TrendConclusion WithDrift(const TrendData& data, const Trend& trend) {
    TrendConclusion conclusion{"DRIFT", {}};
    for (const StationTrend& station : trend.stations) {
        if (station.drift && station.drift->IsNow())
            conclusion.sentences.push_back(SentenceOf(data, station));
    }
    if (trend.HasCommonDrift())
        conclusion.sentences.push_back(
            "all " + std::to_string(trend.stations.size()) + " stations read " +
            (trend.stations.front().drift->change < 0 ? "lower" : "higher") +
            ": what they measure may have changed");
    if (trend.CountOutOfLimits() != 0)
        conclusion.sentences.push_back(OutOfLimits(data, trend));
    return conclusion;
}

std::size_t CountWithPowers(const Trend& trend) {
    return static_cast<std::size_t>(
        std::count_if(trend.stations.begin(), trend.stations.end(),
                      [](const StationTrend& station) { return station.powers != 0; }));
}

/// Whether the run that is told is alone, and not farther away than chance reaches: as limits of
/// few runs are known badly, that is more than their three standard deviations.
bool MayBeChance(const StationTrend& station) {
    constexpr double farthestByChance = 5;
    return station.drift && station.drift->first == station.drift->last &&
           station.farthest < farthestByChance;
}

/// Drifts that are over, and runs alone.
void AddRunsBeyond(const TrendData& data, const Trend& trend, TrendConclusion& conclusion) {
    for (const StationTrend& station : trend.stations) {
        if (!station.drift || station.drift->IsNow())
            continue;
        conclusion.sentences.push_back(SentenceOf(data, station));
    }
    if (std::any_of(trend.stations.begin(), trend.stations.end(), MayBeChance))
        conclusion.sentences.emplace_back("of 1000 runs of a steady station, about 3 are beyond "
                                          "its control limits by chance");
}

/// What there is to say of how the stations are held against each other.
void AddBasis(const Trend& trend, TrendConclusion& conclusion) {
    if (trend.sharedItems == 0)
        return;
    if (trend.withoutReference != 0)
        conclusion.sentences.push_back(
            std::to_string(trend.withoutReference) + " of " +
            Counted(trend.CountPowers(), "power") +
            (trend.withoutReference == 1 ? " takes" : " take") +
            " no part, because only one station has measured such a one");
    if (trend.groups > 1)
        conclusion.sentences.push_back(std::to_string(trend.groups) +
                                       " groups of stations share nothing with each other, so that "
                                       "offsets compare only within a group");
    const bool haveAllPowers = CountWithPowers(trend) == trend.stations.size();
    if (trend.basis == TrendBasis::TwoStations)
        conclusion.sentences.push_back(
            std::string(haveAllPowers ? "with two stations" : "with powers of two stations only") +
            " their offsets cannot tell which of them is wrong");
    if (trend.hasPairs)
        conclusion.sentences.emplace_back(
            "of a group of two stations the offsets cannot tell which of them is wrong");
    if (trend.basis == TrendBasis::OwnMean)
        conclusion.sentences.push_back(
            std::string(haveAllPowers ? "with one station" : "with powers of one station only") +
            " it cannot be told whether it or what it measures has changed");
}

void AddOffsetsApart(const TrendData& data, const Trend& trend, TrendConclusion& conclusion) {
    for (const StationTrend& station : trend.stations) {
        // Of a station with an outlier it is said with that.
        if (station.isApart && !station.drift)
            conclusion.sentences.push_back(SentenceOf(data, station));
    }
}

} // namespace

TrendConclusion ConclusionOf(const TrendData& data, const Trend& trend) {
    const bool hasDrift = trend.CountDrifting() != 0;
    TrendConclusion conclusion = hasDrift ? WithDrift(data, trend) : WithoutDrift(data, trend);
    const auto add = [&conclusion](const std::vector<std::string>& sentences) {
        std::copy_if(sentences.begin(), sentences.end(), std::back_inserter(conclusion.sentences),
                     [](const std::string& sentence) { return !sentence.empty(); });
    };
    AddRunsBeyond(data, trend, conclusion);
    AddOffsetsApart(data, trend, conclusion);
    if (conclusion.word != "NOT MEASURED")
        add(OfEach(data, trend,
                   [&data](const StationTrend& station) { return PhraseOfLost(data, station); }));
    if (conclusion.word != "ERRATIC")
        add(OfEach(data, trend, PhraseOfErratic));
    add({WideLimits(data, trend)});
    if (conclusion.word != "NOT FOLLOWED")
        add(StationsBehind(data, trend, true));
    add(StationsBehind(data, trend, false));
    const bool isNothingShared = trend.basis != TrendBasis::Nothing && trend.sharedItems == 0;
    if (isNothingShared && conclusion.word != "NOTHING SHARED")
        conclusion.sentences.push_back(nothingShared);
    if (trend.isMixed && conclusion.word != "MIXED RUNS")
        add(MixedRuns(data));
    if (trend.CountWithoutLimit() != 0 && conclusion.word != "NO LIMIT")
        conclusion.sentences.push_back(WithoutLimit(trend));
    if (trend.CountTooFew() != 0 && trend.sharedItems != 0 && conclusion.word != "TOO FEW RUNS")
        add({TooFewRuns(data, trend)});
    AddBasis(trend, conclusion);
    return conclusion;
}

} // namespace Bench
