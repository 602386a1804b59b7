#pragma once

#include "Tools/SarvexTool/Bench/Core/Kept.h"
#include "Tools/SarvexTool/Bench/Core/Trend.h"

#include <array>
#include <cstdint>
#include <optional>
#include <string>
#include <unordered_map>
#include <utility>
#include <vector>

namespace Bench {

/// Which configurations and chains a trend is of: those that have all the settings that are named.
struct WantedItems {
    std::array<std::optional<std::string>, SettingCount> settings;
    std::optional<Chain> chain;

    bool Have(const Settings& all) const;
    /// Whether anything is named.
    bool AreChosen() const;
    /// The values that none of the configurations has.
    std::vector<SettingValue> NotIn(const std::vector<Settings>& configurations) const;
};

/// Makes the data of a trend from kept powers, which may be millions, one after the other.
class KeptTrend {
public:
    /// Of merged runs, only the parts count that have the bench and the device of the filter. The
    /// history's texts live longer than the data.
    KeptTrend(const KeptHistory& history, const RunFilter& filter, const WantedItems& wanted);

    /// Leaves out what is not wanted, and what only another program can have written: a power of no
    /// part, one that is not finite, or has more than nine digits before the point.
    void Add(const KeptPower& power);

    /// Where configurations or a chain were chosen, without the stations that were not asked for
    /// such a power: they measure something else. Else these stay, because their runs gave nothing.
    TrendData Take();

private:
    void AddRun(const KeptFacts& run, const RunFilter& filter);
    std::uint32_t StationOf(const RunPlace& place);
    std::uint32_t VisitOf(const KeptFacts& run, const RunPlace& place, std::size_t firstOfRun);
    void TellDevices();
    void TellMissing();
    void LeaveOutStationsNotAsked();

    static constexpr std::uint32_t leftOut = UINT32_MAX;
    static constexpr std::size_t chainCount = 3;

    TrendData m_data;
    std::vector<Settings> m_configurations;
    std::unordered_map<std::string, std::uint32_t> m_stations;
    /// Where the parts of each run begin in the visits of the parts, and where the last one's end.
    std::vector<std::size_t> m_firstParts;
    std::vector<std::uint32_t> m_visitOfPart;
    std::vector<std::optional<std::string>> m_deviceOfPart;
    std::vector<std::optional<std::string>> m_firmwareOfPart;
    std::vector<bool> m_hasPartPower;
    /// Of each configuration and chain; a place is given with the first power.
    std::vector<std::uint32_t> m_items;
    std::vector<bool> m_isWanted;
    bool m_isChosen;
    /// What was not measured: visits, with places among the configurations and chains.
    std::vector<std::pair<std::uint32_t, std::size_t>> m_missing;
};

} // namespace Bench
