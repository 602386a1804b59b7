#pragma once

#include "Tools/SarvexTool/Bench/Core/Trend.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <cmath>
#include <limits>
#include <string>
#include <vector>

namespace Bench {

/// The powers of stations' runs, as a test writes them down.
class TrendFixture {
public:
    static constexpr std::int64_t Day = 86'400;
    /// 2026-03-02T06:00:00Z.
    static constexpr std::int64_t FirstDay = 1'772'431'200;
    /// Stands for a power that a run does not have.
    static constexpr double None = std::numeric_limits<double>::quiet_NaN();

    TrendFixture() { AddItems(1); }

    /// The data have so many items: channels 36, 37 and so on of band 5, chain A.
    void AddItems(std::size_t count) {
        data.items.clear();
        for (std::size_t item = 0; item < count; ++item)
            data.items.push_back(
                {texts.Of({{Setting::Band, "5"}, {Setting::Channel, std::to_string(36 + item)}}),
                 Chain::A});
    }

    /// A station that measures the device "DUT" of its name.
    std::uint32_t AddStation(const std::string& name) {
        data.stations.push_back({name, {"DUT " + name}});
        return static_cast<std::uint32_t>(data.stations.size() - 1);
    }

    /// A run, a day after the one before; a power or None of each item.
    void AddRun(std::uint32_t station, const std::vector<double>& powers) {
        const auto visit = static_cast<std::uint32_t>(data.visits.size());
        data.visits.push_back({station, FirstDay + Day * std::int64_t{visit},
                               "run" + std::to_string(visit),
                               data.stations[station].devices.front(), false});
        for (std::size_t item = 0; item < powers.size(); ++item) {
            if (!std::isnan(powers[item]))
                data.rows.push_back({visit, static_cast<std::uint32_t>(item), powers[item]});
        }
    }

    /// Several runs of one item.
    void AddRuns(std::uint32_t station, const std::vector<double>& powers) {
        for (const double power : powers)
            AddRun(station, {power});
    }

    /// Stations A, B and C measure three items in turn, ten times; C reads 2 dB more from its
    /// eighth run on.
    void AddDriftOfC() {
        AddItems(3);
        AddStation("A");
        AddStation("B");
        AddStation("C");
        const std::vector<double> waves{0, .1, -.1, 0, .2, -.2, .1, -.1, 0, 0};
        for (std::size_t run = 0; run < waves.size(); ++run) {
            const double wave = waves[run];
            const double drift = run >= 7 ? 2 : 0;
            AddRun(0, {10 + wave, 12 + wave, 15 - wave});
            AddRun(1, {10.5 - wave, 12.5 - wave, 15.5 - wave});
            AddRun(2, {9.5 + wave / 2 + drift, 11.5 + wave / 2 + drift, 14.5 + wave / 2 + drift});
        }
    }

    /// Eight runs of one item that are all alike.
    void AddSteady(const std::string& name, double power) {
        AddRuns(AddStation(name), std::vector<double>(8, power));
    }

    /// Stations A and B measure two items in turn, eight times.
    void AddPairOfTwoItems() {
        AddItems(2);
        AddStation("A");
        AddStation("B");
        for (int run = 0; run < 8; ++run) {
            AddRun(0, {10, 12});
            AddRun(1, {10, 12});
        }
    }

    CoreFixture texts;
    TrendData data;
};

} // namespace Bench
