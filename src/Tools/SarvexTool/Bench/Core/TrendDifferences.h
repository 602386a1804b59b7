#pragma once

#include "Tools/SarvexTool/Bench/Core/Trend.h"

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

namespace Bench {

/// What the powers of a trend differ from their references by.
///
/// There is one reference for what several stations have measured of one device with one firmware:
/// an item, but for another device another one, because no two devices send with the same power.
/// Where no device was measured on two stations, and with one station, an item has one reference
/// for all devices.
///
/// References and stations are told apart by a median polish of the stations' mean powers: a
/// reference is the median of the means less their stations' offsets, an offset the median of the
/// station's means less their references, in turn until they stay. So it does not matter which of
/// the stations have measured what. Source: J. W. Tukey, Exploratory Data Analysis (1977), chapter
/// 11, "Median polish".
class TrendDifferences {
public:
    /// So many stations have a power.
    TrendDifferences(const TrendData& data, std::size_t stations);

    /// Those of a visit, in dB, in no order. Powers without a reference are none.
    std::span<double> Of(std::size_t visit) {
        return {m_values.data() + m_starts[visit], m_starts[visit + 1] - m_starts[visit]};
    }
    /// Of all visits.
    std::size_t Count() const { return m_values.size(); }
    std::size_t CountReferences() const { return m_references; }
    /// Whether each device with each firmware has references of its own.
    bool AreByDevice() const { return m_areByDevice; }

private:
    /// Where the differences of each visit begin, and where the last one's end.
    std::vector<std::size_t> m_starts;
    std::vector<double> m_values;
    std::size_t m_references = 0;
    bool m_areByDevice = false;
};

} // namespace Bench
