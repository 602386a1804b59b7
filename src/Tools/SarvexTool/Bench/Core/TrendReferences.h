#pragma once

#include "Tools/SarvexTool/Bench/Core/Trend.h"

#include <cstddef>
#include <cstdint>
#include <numeric>
#include <optional>
#include <span>
#include <vector>

namespace Bench {

/// Rows in the order of a key, and where the rows of each key begin; sorted by counting, because
/// there may be millions.
template <typename Value>
struct Grouped {
    std::vector<std::size_t> starts;
    std::vector<Value> values;

    std::span<Value> Of(std::size_t key) {
        return {values.data() + starts[key], starts[key + 1] - starts[key]};
    }
};

/// The key of a row is below the number of keys; rows for which there is no value are left out.
template <typename Value, typename Row, typename KeyOf, typename ValueOf>
Grouped<Value> GroupRows(const std::vector<Row>& rows, std::size_t keys, KeyOf keyOf,
                         ValueOf valueOf) {
    Grouped<Value> grouped;
    grouped.starts.assign(keys + 1, 0);
    for (const Row& row : rows) {
        if (valueOf(row))
            ++grouped.starts[keyOf(row) + 1];
    }
    std::partial_sum(grouped.starts.begin(), grouped.starts.end(), grouped.starts.begin());
    grouped.values.resize(grouped.starts.back());
    std::vector<std::size_t> next = grouped.starts;
    for (const Row& row : rows) {
        if (const std::optional<Value> value = valueOf(row))
            grouped.values[next[keyOf(row)]++] = *value;
    }
    return grouped;
}

/// Which stations have measured the same, be it by way of others.
class StationGroups {
public:
    explicit StationGroups(std::size_t stations) : m_next(stations) {
        std::iota(m_next.begin(), m_next.end(), std::size_t{0});
    }

    /// One of the group's stations, the same for all of them.
    std::size_t Of(std::size_t station) {
        while (m_next[station] != station) {
            m_next[station] = m_next[m_next[station]];
            station = m_next[station];
        }
        return station;
    }

    void Join(const std::vector<std::uint32_t>& stations) {
        for (const std::uint32_t station : stations)
            m_next[Of(station)] = Of(stations.front());
    }

private:
    /// Another station of the group, or the station itself.
    std::vector<std::size_t> m_next;
};

/// What the powers are held against.
struct References {
    /// One for each item; none where fewer stations have it than are needed.
    std::vector<double> ofItems;
    std::size_t shared = 0;
    StationGroups groups;
};

/// Of the items that so many stations have measured; of at least one.
References ReferencesOf(const TrendData& data, std::size_t neededStations);

} // namespace Bench
