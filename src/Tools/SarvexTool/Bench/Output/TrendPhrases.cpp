#include "Tools/SarvexTool/Bench/Output/TrendPhrases.h"

#include "Tools/SarvexTool/Bench/Output/Phrases.h"
#include "Tools/SarvexTool/Bench/Output/ShownTime.h"

#include <algorithm>
#include <cmath>
#include <cstdlib>
#include <span>

namespace Bench {

namespace {

const std::string fewestRuns = std::to_string(ControlLimits::FewestValues);

std::string DayOf(const TrendData& data, const TrendPoint& point) {
    return ShownDay(data.visits[point.visit].measuredAt);
}

/// "3 of its 10 runs are", "1 of its 10 runs is", "none of its 10 runs is"
std::string CountOfRuns(std::size_t count, const StationTrend& station) {
    return (count == 0 ? "none" : std::to_string(count)) + " of its " +
           Counted(station.points.size(), "run") + (count > 1 ? " are" : " is");
}

/// "2.00 dB higher"
std::string Moved(double change) {
    return Hundredths(std::abs(change)) + " dB " + (change < 0 ? "lower" : "higher");
}

/// ", 3 of them before", ", 1 of them after", ", 3 of them before and 1 after", or "": a drift
/// moves the mean, so that runs before it or after it may be beyond the limits on the other side.
std::string OtherTimes(const StationTrend& station, const Drift& drift) {
    const std::span<const TrendPoint> points = station.points;
    const auto tell = [](std::span<const TrendPoint> part, const char* when) {
        const auto count = std::count_if(part.begin(), part.end(),
                                         [](const TrendPoint& point) { return point.isBeyond; });
        return count == 0 ? "" : std::to_string(count) + when;
    };
    const std::string before = tell(points.first(drift.first), " of them before");
    const std::string after =
        tell(points.subspan(drift.last + 1), before.empty() ? " of them after" : " after");
    return (before.empty() ? "" : ", " + before) +
           (after.empty() ? "" : (before.empty() ? ", " : " and ") + after);
}

/// "; the limits leave out 1 lone run", or "".
std::string LeftOut(const StationTrend& station) {
    return station.leftOut == 0 ? ""
                                : "; the limits leave out " + Counted(station.leftOut, "lone run");
}

std::string PhraseOf(const TrendData& data, const StationTrend& station, const Drift& drift) {
    const std::string first = DayOf(data, station.points[drift.first]);
    const std::string last = DayOf(data, station.points[drift.last]);
    std::string when = " on " + first;
    if (drift.goesOn)
        when = " since " + first;
    else if (first != last)
        when = " from " + first + " to " + last;
    return (drift.goesOn ? "reads " : "read ") + Moved(drift.change) + when + "; " +
           CountOfRuns(station.beyond, station) + " beyond its control limits" +
           OtherTimes(station, drift) + LeftOut(station);
}

/// "reads 0.55 dB high, farther from ..."
std::string Apart(double offset) {
    return "reads " + Hundredths(std::abs(offset)) + " dB " + (offset < 0 ? "low" : "high") +
           ", farther from the others' offsets than by chance";
}

} // namespace

std::string PhraseOfLost(const TrendData& data, const StationTrend& station) {
    if (station.lost == 0)
        return "";
    const std::string part = station.HasLostAll() ? "any" : std::to_string(station.lost);
    return "has no power for " +
           (station.asked == 1 ? "its only measurement"
                               : part + " of its " + Counted(station.asked, "measurement")) +
           " in the last run that asked for " + (station.lost == 1 ? "it" : "them") + ", on " +
           ShownDay(data.visits[station.lastLoss].measuredAt) +
           ", though it or another station has made " + (station.lost == 1 ? "it" : "them");
}

std::string PhraseOfErratic(const StationTrend& station) {
    if (station.timesAsErratic == 0)
        return "";
    return "differs from run to run " + std::to_string(std::llround(station.timesAsErratic)) +
           " times as much as a quieter station, so that a small drift does not show";
}

std::string PhraseOfPowers(const TrendData& data, const StationTrend& station) {
    if (station.drift)
        return (station.isApart ? Apart(*station.offset) + "; " : "") +
               PhraseOf(data, station, *station.drift);
    if (station.powers == 0)
        return "has no power";
    if (station.points.empty())
        return "has measured nothing that another station has measured";
    if (!station.limits)
        return "has " + Counted(station.points.size(), "run") + ", too few for control limits, " +
               "which need " + fewestRuns;
    const std::string steady = CountOfRuns(0, station) + " beyond its control limits";
    if (station.isApart)
        return Apart(*station.offset) + "; " + steady;
    return "is steady: " +
           (station.offset ? "offset " + SignedHundredths(*station.offset) + " dB, " : "") + steady;
}

std::string PhraseOf(const TrendData& data, const StationTrend& station) {
    std::string phrase = PhraseOfPowers(data, station);
    for (const std::string& trouble : {PhraseOfLost(data, station), PhraseOfErratic(station)})
        phrase += trouble.empty() ? "" : "; " + trouble;
    return phrase;
}

std::string DevicesOf(const TrendStation& station) {
    if (station.devices.empty())
        return "";
    return station.devices.size() == 1 ? station.devices.front()
                                       : Counted(station.devices.size(), "device");
}

std::string DeviceOf(const TrendVisit& visit) {
    return visit.hasSeveralDevices ? "several" : visit.device;
}

std::string Hundredths(double number) {
    constexpr long long perOne = 100;
    constexpr long long firstOfTwo = 10;
    const long long hundredths = std::llround(number * static_cast<double>(perOne));
    const long long fraction = std::llabs(hundredths) % perOne;
    return (hundredths < 0 ? "-" : "") + std::to_string(std::llabs(hundredths) / perOne) +
           (fraction < firstOfTwo ? ".0" : ".") + std::to_string(fraction);
}

std::string SignedHundredths(double number) {
    const std::string text = Hundredths(number);
    return text.starts_with('-') || text == "0.00" ? text : "+" + text;
}

} // namespace Bench
