#include "Tools/SarvexTool/Bench/Core/TrendDrift.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <utility>
#include <vector>

namespace Bench {

namespace {

using Points = std::span<const TrendPoint>;

double MedianOfPoints(Points points) {
    std::vector<double> medians = MediansOf(points);
    return MedianOf(medians);
}

/// Places among the points: not all of them.
struct Places {
    std::size_t first = 0;
    std::size_t last = 0;
};

/// The median of the runs before these places, or of those after where there are none before.
double MedianOfOthers(Points points, const Places& places) {
    return MedianOfPoints(places.first > 0 ? points.first(places.first)
                                           : points.subspan(places.last + 1));
}

double MedianOfThose(Points points, const Places& places) {
    return MedianOfPoints(points.subspan(places.first, places.last + 1 - places.first));
}

/// Those of these places, with the change that they make.
Drift DriftFrom(Points points, const Places& places) {
    return {places.first, places.last,
            MedianOfThose(points, places) - MedianOfOthers(points, places)};
}

/// The runs on one side of the mean.
class Side {
public:
    Side(Points points, double mean, bool isHigh) : m_points(points) {
        bool isNewGroup = true;
        for (std::size_t place = 0; place < points.size(); ++place) {
            if ((points[place].median > mean) != isHigh) {
                isNewGroup = true;
            } else if (points[place].isBeyond) {
                if (isNewGroup)
                    m_groups.push_back({place, place});
                m_groups.back().last = place;
                isNewGroup = false;
                ++m_beyond;
            }
        }
    }

    std::size_t CountBeyond() const { return m_beyond; }
    /// The last run beyond, where there is one.
    std::size_t Last() const { return m_groups.back().last; }

    /// The last time that several runs were displaced, or the last one is.
    std::optional<Drift> FindDrift() const {
        if (m_beyond == 1 && Last() + 1 < m_points.size())
            return FindDisplaced(Last());
        std::optional<Places> found;
        for (const Places& group : m_groups) {
            const bool isAlone = group.first == group.last && group.last + 1 < m_points.size();
            if (found && IsPartOf(*found, group))
                found->last = LastDisplaced({found->first, std::max(found->last, group.last)});
            else if (!isAlone)
                found = {group.first, LastDisplaced(group)};
        }
        return found ? std::optional(DriftFrom(m_points, *found)) : std::nullopt;
    }

private:
    /// One good run does not end a drift. Some are to be left, which it is held against.
    bool IsPartOf(const Places& drift, const Places& group) const {
        return group.first <= drift.last + 2 &&
               (drift.first > 0 || group.last + 1 < m_points.size());
    }

    /// The last one after the group that is nearer to it than to the other runs, as most are that
    /// are between. Where the others are those after, most of them are not: some are left.
    std::size_t LastDisplaced(const Places& group) const {
        const double there = MedianOfThose(m_points, group);
        const double others = MedianOfOthers(m_points, group);
        std::size_t last = group.last;
        std::ptrdiff_t nearerLessOthers = 0;
        for (std::size_t place = group.last + 1; place < m_points.size(); ++place) {
            const double median = m_points[place].median;
            const bool isNearer = std::abs(median - there) < std::abs(median - others);
            nearerLessOthers += isNearer ? 1 : -1;
            if (isNearer && nearerLessOthers > 0)
                last = place;
        }
        return last;
    }

    /// The runs that are displaced as those after the only one beyond are: from it on, or after it
    /// where they are displaced to the other side.
    std::optional<Drift> FindDisplaced(std::size_t beyond) const {
        // With fewer before it, it is not known where these are.
        constexpr std::size_t fewestBefore = 3;
        constexpr double enough = 0.5;
        if (beyond < fewestBefore)
            return std::nullopt;
        const double before = MedianOfPoints(m_points.first(beyond));
        const double after = MedianOfPoints(m_points.subspan(beyond + 1)) - before;
        // The run itself may be where those before it are, which have fewer measurements then.
        if (after == 0 || std::abs(after) < enough * std::abs(m_points[beyond].median - before))
            return std::nullopt;
        const auto isDisplaced = [&](const TrendPoint& point) {
            return (point.median - before) / after >= enough;
        };
        std::size_t first = beyond;
        while (!isDisplaced(m_points[first]))
            ++first;
        std::size_t last = m_points.size() - 1;
        while (!isDisplaced(m_points[last]))
            --last;
        return DriftFrom(m_points, {first, last});
    }

    Points m_points;
    std::size_t m_beyond = 0;
    /// From the first to the last run beyond that no run of the other side is between.
    std::vector<Places> m_groups;
};

/// Whether the later drift is nothing but usual runs after a large one: the mean of all runs is
/// between the two, so that some usual ones are beyond the limits.
bool IsUsualAfter(Points points, const Drift& earlier, const Drift& later, double distance) {
    double change = std::abs(later.change);
    // With a third of the runs at most before its end, the station usually is where it has been
    // since.
    if (3 * (earlier.last + 1) <= points.size()) {
        std::vector<TrendPoint> others;
        for (std::size_t place = 0; place < points.size(); ++place) {
            if (!earlier.Has(place) && !later.Has(place))
                others.push_back(points[place]);
        }
        if (2 * others.size() < later.last + 1 - later.first)
            return true;
        const double there = MedianOfThose(points, {later.first, later.last});
        change = std::abs(there - MedianOfPoints(others));
    }
    return change < distance && std::abs(earlier.change) > 2 * change;
}

/// The last one, but where it is none.
std::optional<Drift> LastOrClearer(Points points, const std::optional<Drift>& high,
                                   const std::optional<Drift>& low, double distance) {
    if (!high || !low)
        return high ? high : low;
    const auto [first, last] = std::minmax(*high, *low, [](const Drift& one, const Drift& two) {
        return std::pair(one.last, one.first) < std::pair(two.last, two.first);
    });
    return IsUsualAfter(points, first, last, distance) ? first : last;
}

} // namespace

Drift DriftOf(Points points, const ControlLimits& limits) {
    const Side high(points, limits.mean, true);
    const Side low(points, limits.mean, false);
    const std::optional<Drift> found =
        LastOrClearer(points, high.FindDrift(), low.FindDrift(), limits.Distance());
    const bool isHighLast =
        low.CountBeyond() == 0 || (high.CountBeyond() != 0 && high.Last() > low.Last());
    const Side& side = isHighLast ? high : low;
    const Side& other = isHighLast ? low : high;
    // Two runs beyond on one side are a drift even where each of them is alone.
    const Side& told = side.CountBeyond() > 1 || other.CountBeyond() < 2 ? side : other;
    Drift drift = found ? *found : DriftFrom(points, {told.Last(), told.Last()});
    drift.isLasting = found || told.CountBeyond() > 1;
    drift.goesOn = drift.last + 1 == points.size();
    drift.isOfLoneRuns = !found;
    return drift;
}

} // namespace Bench
