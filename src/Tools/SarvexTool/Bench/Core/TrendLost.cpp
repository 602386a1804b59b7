#include "Tools/SarvexTool/Bench/Core/TrendLost.h"

#include "Tools/SarvexTool/Bench/Core/TrendReferences.h"

#include <algorithm>
#include <utility>

namespace Bench {

namespace {

/// What a visit was asked for.
struct Ask {
    std::uint32_t item = 0;
    std::uint32_t visit = 0;
};

template <typename Row>
Grouped<Ask> AsksByStation(const TrendData& data, const std::vector<Row>& rows) {
    return GroupRows<Ask>(
        rows, data.stations.size(),
        [&data](const Row& row) { return data.visits[row.visit].station; },
        [](const Row& row) {
            return std::optional(Ask{row.item, row.visit});
        });
}

/// The last visits that have made each item, and that have not, in room that is used again for the
/// next station.
class LastAsks {
public:
    explicit LastAsks(std::size_t items) : m_lasts(items) {}

    void AddMade(const Ask& ask) { Reach(ask, &Lasts::made); }
    void AddMissing(const Ask& ask) { Reach(ask, &Lasts::missing); }

    void Tell(StationTrend& station) {
        station.asked = m_touched.size();
        for (const std::uint32_t item : m_touched) {
            const Lasts lasts = std::exchange(m_lasts[item], {});
            // The same may be asked for again in one run: what was made once is not lost.
            if (lasts.missing <= lasts.made)
                continue;
            ++station.lost;
            station.lastLoss = std::max(station.lastLoss, lasts.missing - 1);
        }
        m_touched.clear();
    }

private:
    /// Each one more than the visit's place, and 0 where there is none.
    struct Lasts {
        std::uint32_t made = 0;
        std::uint32_t missing = 0;
    };

    void Reach(const Ask& ask, std::uint32_t Lasts::*kind) {
        Lasts& lasts = m_lasts[ask.item];
        if (lasts.made == 0 && lasts.missing == 0)
            m_touched.push_back(ask.item);
        lasts.*kind = std::max(lasts.*kind, ask.visit + 1);
    }

    std::vector<Lasts> m_lasts;
    std::vector<std::uint32_t> m_touched;
};

} // namespace

void CountLost(const TrendData& data, std::vector<StationTrend>& stations) {
    if (data.missing.empty())
        return;
    Grouped<Ask> made = AsksByStation(data, data.rows);
    Grouped<Ask> missing = AsksByStation(data, data.missing);
    LastAsks lasts(data.items.size());
    for (StationTrend& station : stations) {
        if (missing.Of(station.station).empty())
            continue;
        for (const Ask& ask : made.Of(station.station))
            lasts.AddMade(ask);
        for (const Ask& ask : missing.Of(station.station))
            lasts.AddMissing(ask);
        lasts.Tell(station);
    }
}

} // namespace Bench
