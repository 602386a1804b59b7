#include "Tools/SarvexTool/Bench/Core/KeptTrend.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <gtest/gtest.h>

#include <limits>

namespace Bench {
namespace {

class KeptTrendTest : public testing::Test {
protected:
    KeptTrendTest() {
        for (const char* const channel : {"36", "40"})
            history.configurations.push_back(
                texts.Of({{Setting::Band, "5"}, {Setting::Channel, channel}}));
    }

    using Places = std::vector<RunPlace>;

    void AddRun(std::int64_t measuredAt, Places parts) {
        KeptFacts& run = history.runs.emplace_back();
        run.hash = "0123456789abcdef";
        run.measuredAt = measuredAt;
        run.parts = std::move(parts);
    }

    /// One line for each row: the moment, station and device of its visit, channel, chain, power.
    std::string Taken(const std::vector<KeptPower>& powers) const {
        KeptTrend trend(history, filter, wanted);
        for (const KeptPower& power : powers)
            trend.Add(power);
        const TrendData data = trend.Take();
        std::string text;
        for (const TrendRow& row : data.rows) {
            const TrendVisit& visit = data.visits.at(row.visit);
            const TrendItem& item = data.items.at(row.item);
            text += std::to_string(visit.measuredAt) + " " + data.stations.at(visit.station).name +
                    " " + visit.device + " " + *item.settings[Setting::Channel] + " " +
                    NameOf(item.chain) + " " + std::to_string(static_cast<int>(row.power)) + "\n";
        }
        return text;
    }

    CoreFixture texts;
    KeptHistory history;
    RunFilter filter;
    WantedItems wanted;
};

TEST_F(KeptTrendTest, PowersAreOfTheBenchesOfTheirParts) {
    AddRun(100, {{"B1", "DUT", 1}});
    AddRun(200, {{"B2", std::nullopt, 1}, {"B1", "other", 1}, {}});
    EXPECT_EQ(Taken({{0, 0, 0, Chain::A, 10},
                     {1, 0, 1, Chain::B, 11},
                     {1, 1, 0, Chain::A, 12},
                     {1, 2, 0, Chain::A, 13}}),
              "100 B1 DUT 36 A 10\n200 B2  40 B 11\n200 B1 other 36 A 12\n"
              "200 unknown  36 A 13\n");
}

TEST_F(KeptTrendTest, PartsOfOneBenchAreOneVisit) {
    AddRun(100, {{"B1", "b", 1}, {"B1", "a", 2}, {"B1", "b", 3}});
    KeptTrend trend(history, filter, wanted);
    trend.Add({0, 0, 0, Chain::A, 10});
    trend.Add({0, 1, 0, Chain::A, 11});
    const TrendData data = trend.Take();
    ASSERT_EQ(data.visits.size(), 1U);
    EXPECT_EQ(data.visits[0].run, "01234567");
    EXPECT_EQ(data.visits[0].device, "b") << "that of its first part";
    EXPECT_EQ(data.rows.size(), 2U);
    ASSERT_EQ(data.stations.size(), 1U);
    EXPECT_EQ(data.stations[0].devices, (std::vector<std::string>{"a", "b"}));
}

TEST_F(KeptTrendTest, PartsThatTheFilterDoesNotMeanAreNoStations) {
    AddRun(100, {{"B1", "a", 1}, {"B2", "a", 1}, {"B1", "b", 1}, {}});
    const std::vector<KeptPower> all{{0, 0, 0, Chain::A, 10},
                                     {0, 1, 0, Chain::A, 11},
                                     {0, 2, 0, Chain::A, 12},
                                     {0, 3, 0, Chain::A, 13}};
    filter.bench = "B1";
    EXPECT_EQ(Taken(all), "100 B1 a 36 A 10\n100 B1 a 36 A 12\n");
    filter.bench = UnknownBench;
    EXPECT_EQ(Taken(all), "100 unknown  36 A 13\n");
    filter.bench = "B1";
    filter.device = "b";
    EXPECT_EQ(Taken(all), "100 B1 b 36 A 12\n");
    EXPECT_EQ(KeptTrend(history, filter, wanted).Take().stations.size(), 1U);
}

TEST_F(KeptTrendTest, StationWithoutAnyPowerIsAStation) {
    AddRun(100, {{"B1", "a", 1}});
    EXPECT_EQ(KeptTrend(history, filter, wanted).Take().stations.size(), 1U);
}

TEST_F(KeptTrendTest, OnlyWantedConfigurationsAndChainsAreTaken) {
    AddRun(100, {{"B1", "a", 1}});
    const std::vector<KeptPower> all{{0, 0, 0, Chain::A, 10},
                                     {0, 0, 1, Chain::A, 11},
                                     {0, 0, 1, Chain::B, 12},
                                     {0, 0, 1, Chain::None, 13}};
    wanted.chain = Chain::A;
    EXPECT_EQ(Taken(all), "100 B1 a 36 A 10\n100 B1 a 40 A 11\n");
    wanted.settings[static_cast<std::size_t>(Setting::Channel)] = "40";
    EXPECT_EQ(Taken(all), "100 B1 a 40 A 11\n");
    wanted.chain = std::nullopt;
    EXPECT_EQ(Taken(all), "100 B1 a 40 A 11\n100 B1 a 40 B 12\n100 B1 a 40 ? 13\n");
    wanted.settings[static_cast<std::size_t>(Setting::Rate)] = "MCS9";
    EXPECT_EQ(Taken(all), "") << "a setting that is not known is not the one that is wanted";
}

TEST_F(KeptTrendTest, WhatNoRunHoldsIsLeftOut) {
    AddRun(100, {{"B1", "a", 1}});
    AddRun(200, {{"B1", "a", 1}});
    constexpr double infinite = std::numeric_limits<double>::infinity();
    EXPECT_EQ(Taken({{0, 1, 0, Chain::A, 10},
                     {1, 1, 0, Chain::A, 10},
                     {0, 0, 0, Chain::A, infinite},
                     {0, 0, 0, Chain::A, -infinite},
                     {0, 0, 0, Chain::A, std::numeric_limits<double>::quiet_NaN()},
                     {0, 0, 0, Chain::A, 1e9},
                     {0, 0, 0, Chain::A, -999'999'999}}),
              "100 B1 a 36 A -999999999\n");
}

} // namespace
} // namespace Bench
