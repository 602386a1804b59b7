#include "Tools/SarvexTool/Bench/Core/Trend.h"

#include "Tools/SarvexTool/Bench/Core/TrendLimits.h"
#include "Tools/SarvexTool/Bench/Core/TrendLost.h"
#include "Tools/SarvexTool/Bench/Core/TrendPeers.h"
#include "Tools/SarvexTool/Bench/Core/TrendReferences.h"

#include <algorithm>
#include <cmath>
#include <numeric>

namespace Bench {

namespace {

/// Powers have at most nine digits after the point; a smaller difference is one of rounding.
constexpr double leastDifference = 1e-9;

// cppcheck-suppress passedByValue ; they are put in another order
double MedianOfCopy(std::vector<double> values) {
    return MedianOf(values);
}

/// One for each station, in their order, with its points.
std::vector<StationTrend> StationsWithPoints(const TrendData& data,
                                             const std::vector<double>& references) {
    Grouped<double> differences = GroupRows<double>(
        data.rows, data.visits.size(), [](const TrendRow& row) { return row.visit; },
        [&references](const TrendRow& row) {
            const double reference = references[row.item];
            return std::isnan(reference) ? std::nullopt : std::optional(row.power - reference);
        });
    std::vector<StationTrend> stations(data.stations.size());
    for (std::size_t station = 0; station < stations.size(); ++station)
        stations[station].station = static_cast<std::uint32_t>(station);
    for (std::size_t visit = 0; visit < data.visits.size(); ++visit) {
        const std::span<double> ofVisit = differences.Of(visit);
        if (!ofVisit.empty())
            stations[data.visits[visit].station].points.push_back(
                {static_cast<std::uint32_t>(visit), MedianOf(ofVisit),
                 static_cast<std::uint32_t>(ofVisit.size())});
    }
    return stations;
}

/// The median time between points, of which there are at least two.
double UsualGap(const TrendData& data, const std::vector<TrendPoint>& points) {
    std::vector<double> gaps;
    for (std::size_t place = 1; place < points.size(); ++place)
        gaps.push_back(static_cast<double>(data.visits[points[place].visit].measuredAt -
                                           data.visits[points[place - 1].visit].measuredAt));
    return MedianOf(gaps);
}

void FindStationsBehind(const TrendData& data, std::vector<StationTrend>& stations) {
    constexpr double usualGaps = 3;
    constexpr double day = 86'400;
    constexpr double fourWeeks = 28 * day;
    for (std::size_t visit = 0; visit < data.visits.size(); ++visit) {
        StationTrend& station = stations[data.visits[visit].station];
        station.hasRunSince = !station.points.empty() && visit > station.points.back().visit;
    }
    for (StationTrend& station : stations) {
        if (!station.limits)
            continue;
        const TrendVisit& last = data.visits[station.points.back().visit];
        const auto since = static_cast<double>(
            std::max(data.followedTo, data.visits.back().measuredAt) - last.measuredAt);
        station.isBehind = since > std::max(station.hasRunSince ? day : fourWeeks,
                                            usualGaps * UsualGap(data, station.points));
    }
}

bool IsOut(double power, const Limit& limit) {
    constexpr double unitsPerOne = 1e9;
    const Decimal exact = Decimal::FromUnits(std::llround(power * unitsPerOne));
    return (limit.minimum && exact < *limit.minimum) || (limit.maximum && *limit.maximum < exact);
}

void CountPowers(const TrendData& data, const std::vector<const Limit*>* limits,
                 std::vector<StationTrend>& stations) {
    for (const TrendRow& row : data.rows) {
        StationTrend& station = stations[data.visits[row.visit].station];
        ++station.powers;
        if (limits == nullptr)
            continue;
        const Limit* const limit = (*limits)[row.item];
        station.withoutLimit += std::size_t{limit == nullptr};
        if (limit == nullptr || !IsOut(row.power, *limit))
            continue;
        ++station.outOfLimits;
        station.lastOut = std::max(station.lastOut, row.visit);
    }
}

/// How many stations have a power.
std::size_t CountStations(const TrendData& data) {
    std::vector<bool> isThere(data.stations.size());
    for (const TrendRow& row : data.rows)
        isThere[data.visits[row.visit].station] = true;
    return static_cast<std::size_t>(std::count(isThere.begin(), isThere.end(), true));
}

TrendBasis BasisOf(std::size_t stations) {
    constexpr std::size_t manyStations = 3;
    if (stations >= manyStations)
        return TrendBasis::Stations;
    if (stations == 0)
        return TrendBasis::Nothing;
    return stations == 1 ? TrendBasis::OwnMean : TrendBasis::TwoStations;
}

/// Where a station is among all: the lower, the more it stands out.
int RankOf(const StationTrend& station) {
    enum Rank : int { Drifting, Drifted, BeyondOnce, Troubled, Apart, TooFew, Inconspicuous };
    if (station.drift && station.drift->isLasting)
        return station.drift->goesOn ? Drifting : Drifted;
    if (station.drift)
        return BeyondOnce;
    if (station.lost != 0 || station.timesAsErratic != 0)
        return Troubled;
    if (station.isApart)
        return Apart;
    return station.limits ? Inconspicuous : TooFew;
}

bool StandsOutMore(const StationTrend& left, const StationTrend& right, const TrendData& data) {
    if (RankOf(left) != RankOf(right))
        return RankOf(left) < RankOf(right);
    if (left.farthest != right.farthest)
        return left.farthest > right.farthest;
    return data.stations[left.station].name < data.stations[right.station].name;
}

template <typename Value, typename Fits>
std::size_t CountThose(const std::vector<Value>& values, Fits fits) {
    return static_cast<std::size_t>(std::count_if(values.begin(), values.end(), fits));
}

std::size_t SumOf(const std::vector<StationTrend>& stations, std::size_t StationTrend::*count) {
    return std::accumulate(
        stations.begin(), stations.end(), std::size_t{0},
        [count](std::size_t sum, const StationTrend& station) { return sum + station.*count; });
}

/// Whether a group has two stations.
bool HasPairs(const std::vector<StationTrend>& stations) {
    return std::any_of(stations.begin(), stations.end(), [&stations](const StationTrend& one) {
        return CountThose(stations, [&one](const StationTrend& other) {
                   return !other.points.empty() && other.group == one.group;
               }) == 2;
    });
}

bool IsMixed(const TrendStation& station) {
    return station.devices.size() > 1 || station.firmwares.size() > 1;
}

} // namespace

double MedianOf(std::span<double> numbers) {
    const auto middle = numbers.begin() + static_cast<std::ptrdiff_t>(numbers.size() / 2);
    std::nth_element(numbers.begin(), middle, numbers.end());
    if (numbers.size() % 2 == 1)
        return *middle;
    return std::midpoint(*std::max_element(numbers.begin(), middle), *middle);
}

std::vector<double> MediansOf(std::span<const TrendPoint> points) {
    std::vector<double> medians;
    medians.reserve(points.size());
    for (const TrendPoint& point : points)
        medians.push_back(point.median);
    return medians;
}

bool ControlLimits::AreKeptBy(double value, double share) const {
    return std::abs(value - mean) * std::sqrt(share) <= Distance() + leastDifference;
}

double ControlLimits::DistanceOf(double value, double share) const {
    return Sigmas * std::abs(value - mean) * std::sqrt(share) / Distance();
}

std::optional<ControlLimits> ControlLimitsOf(std::span<const double> values) {
    if (values.size() < ControlLimits::FewestValues)
        return std::nullopt;
    double ranges = 0;
    for (std::size_t place = 1; place < values.size(); ++place)
        ranges += std::abs(values[place] - values[place - 1]);
    const double meanRange = ranges / static_cast<double>(values.size() - 1);
    const double sum = std::accumulate(values.begin(), values.end(), 0.0);
    return ControlLimits{sum / static_cast<double>(values.size()),
                         meanRange / ControlLimits::RangeOfTwo};
}

std::size_t Trend::CountDrifting() const {
    return CountThose(stations, [](const StationTrend& station) {
        return station.drift && station.drift->IsNow();
    });
}

bool Trend::HasCommonDrift() const {
    constexpr std::size_t fewest = 3;
    return stations.size() >= fewest && CountDrifting() == stations.size() &&
           std::all_of(stations.begin(), stations.end(), [this](const StationTrend& station) {
               return std::signbit(station.drift->change) ==
                      std::signbit(stations.front().drift->change);
           });
}

std::size_t Trend::CountTooFew() const {
    return CountThose(stations, [](const StationTrend& station) { return !station.limits; });
}

std::size_t Trend::CountNotFollowed() const {
    return CountThose(stations, [](const StationTrend& station) {
        return station.isBehind && station.hasRunSince;
    });
}

std::size_t Trend::CountWithLost() const {
    return CountThose(stations, [](const StationTrend& station) { return station.lost != 0; });
}

std::size_t Trend::CountErratic() const {
    return CountThose(stations,
                      [](const StationTrend& station) { return station.timesAsErratic != 0; });
}

std::size_t Trend::CountPowers() const {
    return SumOf(stations, &StationTrend::powers);
}

std::size_t Trend::CountOutOfLimits() const {
    return SumOf(stations, &StationTrend::outOfLimits);
}

std::size_t Trend::CountWithoutLimit() const {
    return SumOf(stations, &StationTrend::withoutLimit);
}

bool Trend::HasNoLimit() const {
    return isJudged && CountPowers() != 0 && CountWithoutLimit() == CountPowers();
}

bool Trend::IsFine() const {
    return basis != TrendBasis::Nothing && CountDrifting() == 0 && CountTooFew() == 0 &&
           CountNotFollowed() == 0 && CountWithLost() == 0 && CountErratic() == 0 &&
           CountOutOfLimits() == 0 && !HasNoLimit() && !isMixed;
}

Trend TrendOf(const TrendData& data, const std::vector<const Limit*>* limits) {
    const std::size_t stations = CountStations(data);
    Trend trend;
    trend.basis = BasisOf(stations);
    trend.isJudged = limits != nullptr;
    trend.isMixed = std::any_of(data.stations.begin(), data.stations.end(), IsMixed);
    References references = ReferencesOf(data, std::clamp<std::size_t>(stations, 1, 2));
    trend.sharedItems = references.shared;
    trend.withoutReference = CountThose(
        data.rows, [&](const TrendRow& row) { return std::isnan(references.ofItems[row.item]); });
    trend.stations = StationsWithPoints(data, references.ofItems);
    CountPowers(data, limits, trend.stations);
    for (StationTrend& station : trend.stations) {
        station.group = references.groups.Of(station.station);
        trend.groups += std::size_t{!station.points.empty() && station.group == station.station};
        if (!station.points.empty() && trend.basis != TrendBasis::OwnMean)
            station.offset = MedianOfCopy(MediansOf(station.points));
        HoldAgainstOwnLimits(station);
    }
    trend.hasPairs = trend.groups > 1 && HasPairs(trend.stations);
    FindStationsBehind(data, trend.stations);
    CountLost(data, trend.stations);
    CompareWithPeers(trend.stations);
    std::sort(trend.stations.begin(), trend.stations.end(),
              [&data](const StationTrend& left, const StationTrend& right) {
                  return StandsOutMore(left, right, data);
              });
    return trend;
}

std::vector<const Limit*> LimitsOf(const TrendData& data, LimitTable& table) {
    std::vector<const Limit*> limits;
    limits.reserve(data.items.size());
    for (const TrendItem& item : data.items)
        limits.push_back(table.Find(item.settings, item.chain));
    return limits;
}

std::vector<TrendPower> PowersOf(const TrendData& data, const std::vector<const Limit*>* limits) {
    std::vector<TrendPower> powers;
    if (data.items.size() != 1)
        return powers;
    const Limit* const limit = limits != nullptr ? limits->front() : nullptr;
    std::vector<double> sums(data.visits.size());
    std::vector<std::size_t> counts(data.visits.size());
    std::vector<bool> areOut(data.visits.size());
    for (const TrendRow& row : data.rows) {
        sums[row.visit] += row.power;
        ++counts[row.visit];
        areOut[row.visit] = areOut[row.visit] || (limit != nullptr && IsOut(row.power, *limit));
    }
    for (std::size_t visit = 0; visit < data.visits.size(); ++visit) {
        if (counts[visit] != 0)
            powers.push_back({static_cast<std::uint32_t>(visit),
                              sums[visit] / static_cast<double>(counts[visit]), areOut[visit]});
    }
    return powers;
}

} // namespace Bench
