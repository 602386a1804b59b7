#include "Tools/SarvexTool/Bench/Core/TrendLimits.h"

#include "Tools/SarvexTool/Bench/Core/TrendDrift.h"

#include <algorithm>
#include <span>
#include <vector>

namespace Bench {

namespace {

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

/// The largest distance from the mean of a run beyond that is one of the drift.
double FarthestOf(std::span<const TrendPoint> points, const Drift& drift,
                  const ControlLimits& limits, double usualCount) {
    double farthest = 0;
    for (const TrendPoint& point : points.subspan(drift.first, drift.last + 1 - drift.first)) {
        if (point.isBeyond)
            farthest =
                std::max(farthest, limits.DistanceOf(point.median, ShareOf(point, usualCount)));
    }
    return farthest;
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
    const std::optional<ControlLimits> limits = ControlLimitsOf(MediansOf(others));
    if (!limits)
        return;
    station.limits = limits;
    station.leftOut = station.points.size() - others.size();
    std::optional<Drift> drift = FindBeyond(others, *limits, usualCount);
    for (std::size_t other = 0; other < others.size(); ++other)
        station.points[places[other]].isBeyond = others[other].isBeyond;
    const bool isTold = drift && (drift->isLasting || (!station.drift->isLasting &&
                                                       places[drift->last] > station.drift->last));
    if (!isTold) {
        station.farthest = FarthestOf(station.points, *station.drift, *limits, usualCount);
        return;
    }
    station.farthest = FarthestOf(others, *drift, *limits, usualCount);
    drift->first = places[drift->first];
    drift->last = places[drift->last];
    station.drift = drift;
}

} // namespace

void HoldAgainstOwnLimits(StationTrend& station) {
    station.limits = ControlLimitsOf(MediansOf(station.points));
    if (!station.limits)
        return;
    const double usualCount = UsualCount(station.points);
    station.drift = FindBeyond(station.points, *station.limits, usualCount);
    if (!station.drift)
        return;
    station.farthest = FarthestOf(station.points, *station.drift, *station.limits, usualCount);
    if (station.drift->isOfLoneRuns)
        LeaveOutLoneRuns(station, usualCount);
    station.beyond = static_cast<std::size_t>(
        std::count_if(station.points.begin(), station.points.end(),
                      [](const TrendPoint& point) { return point.isBeyond; }));
}

} // namespace Bench
