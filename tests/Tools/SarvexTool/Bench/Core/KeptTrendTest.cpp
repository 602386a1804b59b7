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

    TrendData DataOf(const std::vector<KeptPower>& powers) const {
        KeptTrend trend(history, filter, wanted);
        for (const KeptPower& power : powers)
            trend.Add(power);
        return trend.Take();
    }

    /// The stations with their devices.
    static std::string StationsOf(const TrendData& data) {
        std::string text;
        for (const TrendStation& station : data.stations) {
            text += (text.empty() ? "" : ", ") + station.name;
            for (const std::string& device : station.devices)
                text += " " + device;
        }
        return text;
    }

    /// One line for each row: the moment, station and device of its visit, channel, chain, power.
    std::string Taken(const std::vector<KeptPower>& powers) const {
        const TrendData data = DataOf(powers);
        std::string text;
        for (const TrendRow& row : data.rows) {
            const TrendVisit& visit = data.visits.at(row.visit);
            const TrendItem& item = data.items.at(row.item);
            text += std::to_string(visit.measuredAt) + " " + data.stations.at(visit.station).name +
                    " " + (visit.hasSeveralDevices ? "several" : visit.device) + " " +
                    *item.settings[Setting::Channel] + " " + NameOf(item.chain) + " " +
                    std::to_string(static_cast<int>(row.power)) + "\n";
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
    const TrendData data = DataOf({{0, 0, 0, Chain::A, 10}, {0, 1, 0, Chain::A, 11}});
    ASSERT_EQ(data.visits.size(), 1U);
    EXPECT_EQ(data.visits[0].run, "01234567");
    EXPECT_EQ(data.rows.size(), 2U);
    EXPECT_EQ(StationsOf(data), "B1 a b");
}

TEST_F(KeptTrendTest, DeviceOfAVisitIsThatOfItsPowers) {
    struct Case {
        const char* what;
        std::vector<std::uint32_t> parts;
        const char* device;
        bool hasSeveral;
    };
    AddRun(100, {{"B1", "a", 1}, {"B1", "b", 1}, {"B1", "b", 2}, {"B1", std::nullopt, 1}});
    for (const Case& each :
         {Case{"the first", {0}, "a", false}, Case{"another one than the first", {1}, "b", false},
          Case{"the same one in two parts", {1, 2}, "b", false}, Case{"two", {2, 0}, "", true},
          Case{"one that nothing tells", {3}, "", false},
          Case{"one, and one that nothing tells", {0, 3}, "", false},
          Case{"two, and one that nothing tells", {3, 1, 0}, "", true},
          Case{"none", {}, "", false}}) {
        SCOPED_TRACE(each.what);
        std::vector<KeptPower> powers;
        for (const std::uint32_t part : each.parts)
            powers.push_back({0, part, 0, Chain::A, 10});
        const TrendData data = DataOf(powers);
        ASSERT_EQ(data.visits.size(), 1U);
        EXPECT_EQ(data.visits[0].device, each.device);
        EXPECT_EQ(data.visits[0].hasSeveralDevices, each.hasSeveral);
        EXPECT_EQ(StationsOf(data), "B1 a b");
    }
}

TEST_F(KeptTrendTest, StationsHaveTheFirmwaresOfTheirRuns) {
    for (const char* const firmware : {"1.5", "1.4", "1.5"}) {
        AddRun(100, {{"B1", "a", 1}});
        history.runs.back().firmware = firmware;
    }
    AddRun(200, {{"B1", "a", 1}});
    EXPECT_EQ(KeptTrend(history, filter, wanted).Take().stations.at(0).firmwares,
              (std::vector<std::string>{"1.4", "1.5"}));
}

TEST_F(KeptTrendTest, PartsThatTheFilterDoesNotMeanAreNoStations) {
    AddRun(100, {{"B1", "a", 1}, {"B2", "a", 1}, {"B1", "b", 1}, {}});
    const std::vector<KeptPower> all{{0, 0, 0, Chain::A, 10},
                                     {0, 1, 0, Chain::A, 11},
                                     {0, 2, 0, Chain::A, 12},
                                     {0, 3, 0, Chain::A, 13}};
    filter.bench = "B1";
    EXPECT_EQ(Taken(all), "100 B1 several 36 A 10\n100 B1 several 36 A 12\n");
    filter.bench = UnknownBench;
    EXPECT_EQ(Taken(all), "100 unknown  36 A 13\n");
    filter.bench = "B1";
    filter.device = "b";
    EXPECT_EQ(Taken(all), "100 B1 b 36 A 12\n");
    EXPECT_EQ(KeptTrend(history, filter, wanted).Take().stations.size(), 1U);
}

TEST_F(KeptTrendTest, StationWithoutAnyPowerIsAStation) {
    AddRun(100, {{"B1", "a", 1}});
    EXPECT_EQ(StationsOf(DataOf({})), "B1 a");
}

TEST_F(KeptTrendTest, StationWithoutAPowerOfThoseChosenIsLeftOut) {
    AddRun(100, {{"B1", "a", 1}, {"B2", "a", 1}});
    AddRun(200, {{"B3", "a", 1}, {"B3", "b", 1}});
    const std::vector<KeptPower> all{{0, 0, 0, Chain::A, 10},
                                     {0, 1, 1, Chain::B, 11},
                                     {1, 0, 0, Chain::A, 12},
                                     {1, 1, 1, Chain::B, 13}};
    EXPECT_EQ(StationsOf(DataOf(all)), "B1 a, B2 a, B3 a b");
    wanted.chain = Chain::B;
    EXPECT_EQ(StationsOf(DataOf(all)), "B2 a, B3 b");
    EXPECT_EQ(Taken(all), "100 B2 a 40 B 11\n200 B3 b 40 B 13\n");
    wanted.chain = std::nullopt;
    wanted.settings[static_cast<std::size_t>(Setting::Channel)] = "36";
    EXPECT_EQ(StationsOf(DataOf(all)), "B1 a, B3 a");
    EXPECT_EQ(Taken(all), "100 B1 a 36 A 10\n200 B3 a 36 A 12\n");
    EXPECT_EQ(DataOf(all).visits.size(), 2U);
}

TEST_F(KeptTrendTest, WhatWasNotMeasuredIsMissingOfItsVisitWhereAnotherHasIt) {
    AddRun(100, {{"B1", "DUT", 1}});
    AddRun(200, {{"B1", "DUT", 1}});
    const TrendData data = DataOf({{1, 0, 0, Chain::A, std::nullopt},
                                   {1, 0, 1, Chain::A, std::nullopt},
                                   {0, 0, 0, Chain::A, 10},
                                   {0, 0, 0, Chain::B, 11}});
    EXPECT_EQ(data.items.size(), 2U);
    ASSERT_EQ(data.missing.size(), 1U) << "the other channel was never measured";
    EXPECT_EQ(data.missing[0].visit, 1U);
    EXPECT_EQ(data.missing[0].item, 0U);
}

TEST_F(KeptTrendTest, LineWhoseChainIsNotKnownMissesBothChains) {
    AddRun(100, {{"B1", "DUT", 1}});
    AddRun(200, {{"B1", "DUT", 1}});
    const TrendData data = DataOf(
        {{0, 0, 0, Chain::A, 10}, {0, 0, 0, Chain::B, 11}, {1, 0, 0, Chain::None, std::nullopt}});
    EXPECT_EQ(data.missing.size(), 2U);
}

TEST_F(KeptTrendTest, StationThatWasAskedForWhatIsChosenIsOneWithoutPowersToo) {
    AddRun(100, {{"B1", "DUT", 1}});
    AddRun(200, {{"B2", "DUT", 1}});
    AddRun(300, {{"B3", "DUT", 1}});
    wanted.chain = Chain::A;
    const TrendData data = DataOf({{0, 0, 0, Chain::A, 10},
                                   {1, 0, 0, Chain::B, std::nullopt},
                                   {2, 0, 0, Chain::A, std::nullopt}});
    EXPECT_EQ(StationsOf(data), "B1 DUT, B3");
    ASSERT_EQ(data.missing.size(), 1U);
    EXPECT_EQ(data.visits[data.missing[0].visit].measuredAt, 300);
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

TEST_F(KeptTrendTest, ValuesThatNothingKeptHasAreTold) {
    EXPECT_TRUE(DataOf({}).neverKept.empty());
    wanted.settings[static_cast<std::size_t>(Setting::Band)] = "5";
    wanted.settings[static_cast<std::size_t>(Setting::Channel)] = "37";
    wanted.settings[static_cast<std::size_t>(Setting::Rate)] = "MCS9";
    EXPECT_EQ(DataOf({}).neverKept,
              (std::vector<SettingValue>{{Setting::Channel, "37"}, {Setting::Rate, "MCS9"}}));
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
