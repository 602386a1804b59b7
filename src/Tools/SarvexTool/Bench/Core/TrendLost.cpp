#include "Tools/SarvexTool/Bench/Core/TrendLost.h"

#include <algorithm>
#include <set>
#include <utility>

namespace Bench {

namespace {

/// A station and an item.
using StationItem = std::pair<std::uint32_t, std::uint32_t>;

/// Those that are missing in the stations' last visits.
std::set<StationItem> MissingAtLast(const TrendData& data,
                                    const std::vector<StationTrend>& stations) {
    std::set<StationItem> missing;
    for (const TrendMissing& one : data.missing) {
        const std::uint32_t station = data.visits[one.visit].station;
        if (one.visit == stations[station].lastVisit)
            missing.emplace(station, one.item);
    }
    return missing;
}

} // namespace

void CountLost(const TrendData& data, std::vector<StationTrend>& stations) {
    const auto reach = [&](std::uint32_t visit) {
        StationTrend& station = stations[data.visits[visit].station];
        station.lastVisit = std::max(station.lastVisit, visit);
    };
    for (const TrendRow& row : data.rows)
        reach(row.visit);
    for (const TrendMissing& one : data.missing)
        reach(one.visit);
    std::set<StationItem> missing = MissingAtLast(data, stations);
    for (const StationItem& one : missing)
        ++stations[one.first].lastAsked;
    for (const TrendRow& row : data.rows) {
        const std::uint32_t station = data.visits[row.visit].station;
        if (row.visit != stations[station].lastVisit)
            continue;
        ++stations[station].lastAsked;
        // The same may be asked for again in one run: what was made once is not lost.
        missing.erase({station, row.item});
    }
    if (missing.empty())
        return;
    for (const TrendRow& row : data.rows) {
        const std::uint32_t station = data.visits[row.visit].station;
        stations[station].lost += missing.erase({station, row.item});
    }
}

} // namespace Bench
