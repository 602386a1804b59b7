#include "Tools/SarvexTool/Bench/Core/TrendDrift.h"

#include <algorithm>
#include <cmath>
#include <optional>
#include <vector>

namespace Bench {

namespace {

using Points = std::span<const TrendPoint>;

double MedianOfPoints(Points points) {
    std::vector<double> medians;
    medians.reserve(points.size());
    for (const TrendPoint& point : points)
        medians.push_back(point.median);
    return MedianOf(medians);
}

/// Those of these places, with the change that they make.
Drift DriftFrom(Points points, std::size_t first, std::size_t last) {
    const Points others = first > 0 ? points.first(first) : points.subspan(last + 1);
    const double change =
        MedianOfPoints(points.subspan(first, last + 1 - first)) - MedianOfPoints(others);
    return {first, last, change};
}

/// The runs on one side of the mean.
class Side {
public:
    Side(Points points, double mean, bool isHigh)
        : m_points(points), m_mean(mean), m_isHigh(isHigh) {
        bool isNewGroup = true;
        for (std::size_t place = 0; place < points.size(); ++place) {
            if (!IsHere(place)) {
                isNewGroup = true;
            } else if (points[place].isBeyond) {
                m_first = isNewGroup ? place : m_first;
                m_last = place;
                isNewGroup = false;
                ++m_beyond;
            }
        }
    }

    std::size_t CountBeyond() const { return m_beyond; }
    /// The last run beyond, where there is one.
    std::size_t Last() const { return m_last; }

    /// The last time that several runs were displaced, or the last one is.
    std::optional<Drift> FindDrift() const {
        if (m_beyond == 0)
            return std::nullopt;
        if (m_first == m_last && m_last + 1 < m_points.size())
            return m_beyond == 1 ? FindDisplaced() : std::nullopt;
        return DriftFrom(m_points, m_first, LastDisplaced());
    }

private:
    bool IsHere(std::size_t place) const { return (m_points[place].median > m_mean) == m_isHigh; }

    /// The last one after the last beyond that is nearer to those beyond than to those before them,
    /// as most are that are between. One good run does not end a drift.
    std::size_t LastDisplaced() const {
        const double there = MedianOfPoints(m_points.subspan(m_first, m_last + 1 - m_first));
        const double before = m_first > 0 ? MedianOfPoints(m_points.first(m_first)) : m_mean;
        std::size_t last = m_last;
        std::ptrdiff_t nearerLessOthers = 0;
        for (std::size_t place = m_last + 1; place < m_points.size(); ++place) {
            const double median = m_points[place].median;
            const bool isNearer = std::abs(median - there) < std::abs(median - before);
            nearerLessOthers += isNearer ? 1 : -1;
            if (isNearer && nearerLessOthers > 0)
                last = place;
        }
        return last;
    }

    /// The runs that are displaced as those after the only one beyond are: from it on, or after it
    /// where they are displaced to the other side.
    std::optional<Drift> FindDisplaced() const {
        // With fewer before it, it is not known where these are.
        constexpr std::size_t fewestBefore = 3;
        constexpr double enough = 0.5;
        if (m_last < fewestBefore)
            return std::nullopt;
        const double before = MedianOfPoints(m_points.first(m_last));
        const double after = MedianOfPoints(m_points.subspan(m_last + 1)) - before;
        // The run is not where those before it are, else one of them would be beyond, too.
        if (std::abs(after) < enough * std::abs(m_points[m_last].median - before))
            return std::nullopt;
        const auto isDisplaced = [&](const TrendPoint& point) {
            return (point.median - before) / after >= enough;
        };
        std::size_t first = m_last;
        while (!isDisplaced(m_points[first]))
            ++first;
        std::size_t last = m_points.size() - 1;
        while (!isDisplaced(m_points[last]))
            --last;
        return DriftFrom(m_points, first, last);
    }

    Points m_points;
    double m_mean;
    bool m_isHigh;
    std::size_t m_beyond = 0;
    /// Those beyond that end the side's runs beyond, without a run of the other side between.
    std::size_t m_first = 0;
    std::size_t m_last = 0;
};

/// The last one, but where the other one is more than twice as large: after a large change the mean
/// of all runs is between, and a few runs of a usual spread may be beyond the limits.
std::optional<Drift> Clearer(const std::optional<Drift>& last, const std::optional<Drift>& other) {
    if (!last || !other)
        return last ? last : other;
    return std::abs(other->change) > 2 * std::abs(last->change) ? other : last;
}

} // namespace

Drift DriftOf(Points points, const ControlLimits& limits) {
    const Side high(points, limits.mean, true);
    const Side low(points, limits.mean, false);
    const bool isHighLast =
        low.CountBeyond() == 0 || (high.CountBeyond() != 0 && high.Last() > low.Last());
    const Side& side = isHighLast ? high : low;
    const Side& other = isHighLast ? low : high;
    const std::optional<Drift> found = Clearer(side.FindDrift(), other.FindDrift());
    // Two runs beyond on one side are a drift even where each of them is alone.
    const Side& told = side.CountBeyond() > 1 || other.CountBeyond() < 2 ? side : other;
    Drift drift = found ? *found : DriftFrom(points, told.Last(), told.Last());
    drift.isLasting = found || told.CountBeyond() > 1;
    drift.goesOn = drift.last + 1 == points.size();
    drift.isOfLoneRuns = !found;
    return drift;
}

} // namespace Bench
