#include "Tools/SarvexTool/Bench/Core/TrendReferences.h"

#include <algorithm>
#include <limits>

namespace Bench {

namespace {

/// An item without a reference.
constexpr double none = std::numeric_limits<double>::quiet_NaN();

struct StationPower {
    std::uint32_t station = 0;
    double power = 0;
};

/// The means of an item's powers by station, in room that is used again for the next item.
class StationMeans {
public:
    explicit StationMeans(std::size_t stations) : m_sums(stations), m_counts(stations) {}

    /// Those of the stations that have a power, in the order of Stations.
    std::span<double> Of(std::span<const StationPower> powers) {
        m_means.clear();
        m_touched.clear();
        for (const StationPower& power : powers) {
            if (m_counts[power.station]++ == 0)
                m_touched.push_back(power.station);
            m_sums[power.station] += power.power;
        }
        for (const std::uint32_t station : m_touched) {
            m_means.push_back(m_sums[station] / static_cast<double>(m_counts[station]));
            m_sums[station] = 0;
            m_counts[station] = 0;
        }
        return m_means;
    }

    /// The stations of the last means.
    const std::vector<std::uint32_t>& Stations() const { return m_touched; }

private:
    std::vector<double> m_sums;
    std::vector<std::size_t> m_counts;
    std::vector<std::uint32_t> m_touched;
    std::vector<double> m_means;
};

} // namespace

References ReferencesOf(const TrendData& data, std::size_t neededStations) {
    Grouped<StationPower> byItem = GroupRows<StationPower>(
        data.rows, data.items.size(), [](const TrendRow& row) { return row.item; },
        [&data](const TrendRow& row) {
            return std::optional(StationPower{data.visits[row.visit].station, row.power});
        });
    References references{std::vector<double>(data.items.size(), none), 0,
                          StationGroups(data.stations.size())};
    StationMeans means(data.stations.size());
    for (std::size_t item = 0; item < data.items.size(); ++item) {
        const std::span<StationPower> powers = byItem.Of(item);
        // A sum depends on the order of its parts, and a database has none.
        std::sort(powers.begin(), powers.end(),
                  [](const StationPower& left, const StationPower& right) {
                      return left.power < right.power;
                  });
        const std::span<double> ofItem = means.Of(powers);
        if (ofItem.size() < neededStations || ofItem.empty())
            continue;
        references.ofItems[item] = MedianOf(ofItem);
        ++references.shared;
        references.groups.Join(means.Stations());
    }
    return references;
}

} // namespace Bench
