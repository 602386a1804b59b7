#include "Tools/SarvexTool/Bench/Core/TrendPeers.h"

#include <algorithm>
#include <array>
#include <cmath>
#include <numeric>

namespace Bench {

namespace {

/// What a value of Student's distribution exceeds, to one side or the other, by chance once in 370.
/// With few degrees of freedom, of which there are at least two, as calculated from the
/// distribution; else the expansion 26.7.5 of Abramowitz and Stegun, Handbook of Mathematical
/// Functions, from the normal distribution's three, within 1.5 per cent.
double FarthestByChance(std::size_t degreesOfFreedom) {
    constexpr std::array<double, 3> ofFew{19.21, 9.22, 6.62};
    if (degreesOfFreedom < ofFew.size() + 2)
        return ofFew.at(degreesOfFreedom - 2);
    constexpr double first = 7.5;
    constexpr double second = 17.25;
    constexpr double third = 30.19;
    const double share = 1 / static_cast<double>(degreesOfFreedom);
    return ControlLimits::Sigmas + share * (first + share * (second + share * third));
}

/// Whether there is enough of the station to hold it against others.
bool IsSteady(const StationTrend& station) {
    return station.limits && station.offset && !(station.drift && station.drift->isLasting);
}

/// What the other stations of the group have, of those that are wanted.
template <typename IsWanted, typename ValueOf>
std::vector<double> OfOthers(const std::vector<StationTrend>& stations, const StationTrend& one,
                             IsWanted isWanted, ValueOf valueOf) {
    std::vector<double> values;
    for (const StationTrend& other : stations) {
        if (&other != &one && other.group == one.group && isWanted(other))
            values.push_back(valueOf(other));
    }
    return values;
}

/// The difference of neighbouring runs that a third of them exceed: an outlier or a step changes it
/// little.
double UsualRange(const StationTrend& station) {
    std::vector<double> ranges;
    ranges.reserve(station.points.size());
    for (std::size_t place = 1; place < station.points.size(); ++place)
        ranges.push_back(std::abs(station.points[place].median - station.points[place - 1].median));
    const auto place = ranges.begin() + static_cast<std::ptrdiff_t>(ranges.size() * 2 / 3);
    std::nth_element(ranges.begin(), place, ranges.end());
    return std::max(*place, ControlLimits::Least);
}

/// How many times as much as those of the quieter others its runs differ; 0 where that is not much.
/// The lower median counts as well, because the median of two is large where one of them is
/// erratic.
double TimesAsErratic(const std::vector<StationTrend>& stations, const StationTrend& station) {
    constexpr double muchDecibels = 0.2;
    constexpr double muchTimesTheMedian = 4;
    // Of two, one is quiet by chance more easily.
    constexpr double muchTimesTheLower = 5;
    if (!station.limits || UsualRange(station) <= muchDecibels)
        return 0;
    std::vector<double> others = OfOthers(
        stations, station, [](const StationTrend& other) { return other.limits.has_value(); },
        UsualRange);
    if (others.empty())
        return 0;
    const double median = MedianOf(others);
    const auto lower = others.begin() + static_cast<std::ptrdiff_t>((others.size() - 1) / 2);
    std::nth_element(others.begin(), lower, others.end());
    const double range = UsualRange(station);
    return range > std::min(muchTimesTheMedian * median, muchTimesTheLower * *lower)
               ? range / *lower
               : 0;
}

} // namespace

bool IsFarFrom(double value, std::span<const double> others) {
    constexpr std::size_t fewestOthers = 3;
    if (others.size() < fewestOthers)
        return false;
    const auto count = static_cast<double>(others.size());
    const double mean = std::accumulate(others.begin(), others.end(), 0.0) / count;
    double squares = 0;
    for (const double other : others)
        squares += (other - mean) * (other - mean);
    // That of the difference between a value and the mean of the others.
    const double deviation = std::sqrt(squares / (count - 1) * (1 + 1 / count));
    return std::abs(value - mean) >
           std::max(FarthestByChance(others.size() - 1) * deviation, ControlLimits::Least);
}

void CompareWithPeers(std::vector<StationTrend>& stations) {
    for (StationTrend& station : stations) {
        station.timesAsErratic = TimesAsErratic(stations, station);
        if (!IsSteady(station))
            continue;
        const std::vector<double> others = OfOthers(
            stations, station, IsSteady, [](const StationTrend& other) { return *other.offset; });
        station.isApart = IsFarFrom(*station.offset, others);
    }
}

} // namespace Bench
