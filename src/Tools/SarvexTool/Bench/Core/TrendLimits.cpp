#include "Tools/SarvexTool/Bench/Core/TrendLimits.h"

#include "Tools/SarvexTool/Bench/Core/TrendDrift.h"

#include <algorithm>
#include <span>
#include <vector>

namespace Bench {

namespace {

std::optional<ControlLimits> LimitsOfPoints(std::span<const TrendPoint> points) {
    std::vector<double> medians;
    medians.reserve(points.size());
    for (const TrendPoint& point : points)
        medians.push_back(point.median);
    return ControlLimitsOf(medians);
}

/// The median of how many differences the points are made of.
double UsualCount(std::span<const TrendPoint> points) {
    std::vector<double> counts;
    counts.reserve(points.size());
    for (const TrendPoint& point : points)
        counts.push_back(point.count);
    return MedianOf(counts);
}

double ShareOf(const TrendPoint& point, double usualCount) {
    return std::min(point.count / usualCount, 1.0);
}

/// Tells which points are beyond, and what drift they make.
std::optional<Drift> FindBeyond(std::span<TrendPoint> points, const ControlLimits& limits,
                                double usualCount) {
    bool isAnyBeyond = false;
    for (TrendPoint& point : points) {
        point.isBeyond = !limits.AreKeptBy(point.median, ShareOf(point, usualCount));
        isAnyBeyond = isAnyBeyond || point.isBeyond;
    }
    return isAnyBeyond ? std::optional(DriftOf(points, limits)) : std::nullopt;
}

/// The limits and the drift without the lone runs that are beyond, where enough others are left.
void LeaveOutLoneRuns(StationTrend& station, double usualCount) {
    std::vector<TrendPoint> others;
    std::vector<std::size_t> places;
    for (std::size_t place = 0; place < station.points.size(); ++place) {
        if (station.points[place].isBeyond)
            continue;
        others.push_back(station.points[place]);
        places.push_back(place);
    }
    const std::optional<ControlLimits> limits = LimitsOfPoints(others);
    if (!limits)
        return;
    station.limits = limits;
    station.leftOut = station.points.size() - others.size();
    std::optional<Drift> drift = FindBeyond(others, *limits, usualCount);
    for (std::size_t other = 0; other < others.size(); ++other)
        station.points[places[other]].isBeyond = others[other].isBeyond;
    if (!drift)
        return;
    drift->first = places[drift->first];
    drift->last = places[drift->last];
    if (drift->isLasting || (!station.drift->isLasting && drift->last > station.drift->last))
        station.drift = drift;
}

void CountBeyond(StationTrend& station, double usualCount) {
    for (std::size_t place = 0; place < station.points.size(); ++place) {
        const TrendPoint& point = station.points[place];
        station.beyond += std::size_t{point.isBeyond};
        if (point.isBeyond && station.drift->Has(place))
            station.farthest =
                std::max(station.farthest,
                         station.limits->DistanceOf(point.median, ShareOf(point, usualCount)));
    }
}

} // namespace

void HoldAgainstOwnLimits(StationTrend& station) {
    station.limits = LimitsOfPoints(station.points);
    if (!station.limits)
        return;
    const double usualCount = UsualCount(station.points);
    station.drift = FindBeyond(station.points, *station.limits, usualCount);
    if (station.drift && station.drift->isOfLoneRuns)
        LeaveOutLoneRuns(station, usualCount);
    CountBeyond(station, usualCount);
}

} // namespace Bench
