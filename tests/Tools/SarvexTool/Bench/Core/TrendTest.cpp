#include "Tools/SarvexTool/Bench/Core/Trend.h"
#include "tests/Tools/SarvexTool/Bench/Core/TrendFixture.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Bench {
namespace {

constexpr double exactly = 1e-9;

class TrendTest : public testing::Test, protected TrendFixture {
protected:
    std::string NamesInOrder(const Trend& trend) const {
        std::string names;
        for (const StationTrend& station : trend.stations)
            names += (names.empty() ? "" : " ") + data.stations[station.station].name;
        return names;
    }

    static std::string Beyond(const StationTrend& station) {
        std::string places;
        for (std::size_t place = 0; place < station.points.size(); ++place)
            places += station.points[place].isBeyond ? " " + std::to_string(place) : "";
        return places;
    }

    /// Two stations that always read 10 and 11, and a third whose runs are these.
    StationTrend ThirdOf(const std::vector<double>& powers) {
        AddSteady("A", 10);
        AddSteady("B", 11);
        AddRuns(AddStation("C"), powers);
        const Trend trend = TrendOf(data);
        for (const StationTrend& station : trend.stations) {
            if (station.station == 2)
                return station;
        }
        throw std::logic_error("station C is missing");
    }

    /// A limit of at most so many dBm for everything.
    static Limit AtMost(Decimal maximum) {
        Limit limit;
        limit.maximum = maximum;
        return limit;
    }
};

TEST_F(TrendTest, MedianOfAnEvenNumberIsTheMeanOfTheTwoInTheMiddle) {
    struct Case {
        std::vector<double> numbers;
        double median;
    };
    const Case cases[] = {
        {{7}, 7}, {{4, 1}, 2.5}, {{9, -1, 2}, 2}, {{8, 1, 4, 2}, 3}, {{5, 5, 1, 1, 5, 1}, 3}};
    for (Case each : cases) {
        SCOPED_TRACE(each.numbers.size());
        EXPECT_DOUBLE_EQ(MedianOf(each.numbers), each.median);
    }
}

// The flow rates are the example of the NIST/SEMATECH e-Handbook of Statistical Methods, 6.3.2.2.
TEST_F(TrendTest, ControlLimitsAreThoseOfTheHandbook) {
    const std::vector<double> flow{49.6, 47.6, 49.9, 51.3, 47.8, 51.2, 52.6, 52.4, 53.6, 52.1};
    const ControlLimits limits = ControlLimitsOf(flow).value();
    EXPECT_NEAR(limits.mean, 50.81, exactly);
    EXPECT_NEAR(limits.sigma, 1.664696611505123, exactly);
    EXPECT_NEAR(limits.Lower(), 45.81591016548463, exactly);
    EXPECT_NEAR(limits.Upper(), 55.80408983451537, exactly);
    EXPECT_TRUE(limits.AreKeptBy(55.8));
    EXPECT_FALSE(limits.AreKeptBy(55.81));
    EXPECT_FALSE(limits.AreKeptBy(45.81));
}

TEST_F(TrendTest, SevenValuesHaveNoControlLimits) {
    const std::vector<double> values{1, 2, 3, 4, 5, 6, 7, 8};
    EXPECT_FALSE(ControlLimitsOf(std::span(values).first(7)));
    EXPECT_TRUE(ControlLimitsOf(values));
}

TEST_F(TrendTest, ValuesThatAreAllAlikeAreWithinTheirLimits) {
    const std::vector<double> values(9, 0.1);
    EXPECT_TRUE(ControlLimitsOf(values)->AreKeptBy(0.1)) << "the mean of them is rounded";
}

// The expected figures are those of Python's module statistics for the same powers.
TEST_F(TrendTest, StationThatReadsMoreFromARunOnComesFirst) {
    AddDriftOfC();
    const Trend trend = TrendOf(data);
    EXPECT_EQ(trend.basis, TrendBasis::Stations);
    EXPECT_EQ(trend.sharedItems, 3U);
    EXPECT_FALSE(trend.IsFine());
    EXPECT_EQ(trend.CountDrifting(), 1U);
    ASSERT_EQ(NamesInOrder(trend), "C A B");
    const StationTrend& drifting = trend.stations[0];
    EXPECT_NEAR(*drifting.offset, -0.55, exactly);
    EXPECT_NEAR(drifting.limits->mean, 0, exactly);
    EXPECT_NEAR(drifting.limits->Upper(), 0.7683215130023648, exactly);
    EXPECT_EQ(Beyond(drifting), " 7 8 9");
    EXPECT_EQ(drifting.beyond, 3U);
    EXPECT_NEAR(drifting.farthest, 1.4 / 0.25610717100078817, 1e-6);
    ASSERT_TRUE(drifting.drift);
    EXPECT_EQ(drifting.drift->first, 7U);
    EXPECT_EQ(drifting.drift->last, 9U);
    EXPECT_NEAR(drifting.drift->change, 1.4 - -0.6, exactly);
    EXPECT_TRUE(drifting.drift->isLasting);
}

TEST_F(TrendTest, StationsHaveTheMediansOffsetsAndLimitsOfTheirDifferences) {
    AddDriftOfC();
    const Trend trend = TrendOf(data);
    const StationTrend& steady = trend.stations[1];
    const std::vector<double> medians{-.1, 0, -.2, -.1, .1, -.3, 0, -.2, -.1, -.1};
    ASSERT_EQ(steady.points.size(), medians.size());
    for (std::size_t place = 0; place < medians.size(); ++place) {
        SCOPED_TRACE(place);
        EXPECT_NEAR(steady.points[place].median, medians[place], exactly);
        EXPECT_EQ(steady.points[place].count, 3U);
        EXPECT_EQ(steady.points[place].visit, 3 * place);
    }
    EXPECT_NEAR(*steady.offset, -0.1, exactly);
    EXPECT_NEAR(steady.limits->Lower(), -0.5728132387706836, exactly);
    EXPECT_NEAR(steady.limits->Upper(), 0.3728132387706843, exactly);
    EXPECT_FALSE(steady.drift);
    EXPECT_NEAR(*trend.stations[2].offset, 0.4, exactly);
}

TEST_F(TrendTest, DriftSinceIsTheFirstRunBeyondOnTheSideOfTheLast) {
    // Twelve runs that rise by 0.1 dB each: the first are beyond the lower limit, the last beyond
    // the upper one.
    std::vector<double> rising;
    for (int run = 0; run < 12; ++run)
        rising.push_back(10.5 + 0.1 * run);
    const StationTrend station = ThirdOf(rising);
    EXPECT_EQ(Beyond(station), " 0 1 2 9 10 11");
    EXPECT_EQ(station.drift->first, 9U);
    EXPECT_EQ(station.drift->last, 11U);
    EXPECT_NEAR(station.drift->change, 1.0 - 0.4, exactly);
    EXPECT_TRUE(station.drift->isLasting);
}

TEST_F(TrendTest, OneRunAloneBeyondIsNoLastingDrift) {
    const StationTrend station = ThirdOf({10.5, 10.6, 10.5, 10.6, 10.5, 15, 10.5, 10.6, 10.5, 10.6,
                                          10.5, 10.6, 10.5, 10.6, 10.5, 10.6});
    EXPECT_EQ(Beyond(station), " 5");
    ASSERT_TRUE(station.drift);
    EXPECT_FALSE(station.drift->isLasting);
    EXPECT_EQ(station.drift->first, 5U);
    EXPECT_EQ(station.drift->last, 5U);
    EXPECT_NEAR(station.drift->change, 4.5, exactly);
}

TEST_F(TrendTest, StationWithOneRunAloneBeyondComesFirstAndIsFine) {
    AddSteady("A", 10);
    AddSteady("B", 11);
    AddRuns(AddStation("C"), {10.5, 10.6, 10.5, 10.6, 10.5, 15, 10.5, 10.6, 10.5, 10.6, 10.5, 10.6,
                              10.5, 10.6, 10.5, 10.6});
    const Trend trend = TrendOf(data);
    EXPECT_EQ(NamesInOrder(trend), "C A B");
    EXPECT_EQ(trend.CountDrifting(), 0U);
    EXPECT_TRUE(trend.IsFine());
}

TEST_F(TrendTest, RunsWithinTheLimitsAfterOneBeyondMakeNoDriftOnItsSideEither) {
    const StationTrend station = ThirdOf({10.5, 10.6, 10.5, 10.6, 10.5, 10.6, 10.5, 10.6, 10.5,
                                          10.6, 10.5, 10.6, 10.5, 9.5, 10.46, 10.45, 10.46});
    EXPECT_EQ(Beyond(station), " 13");
    ASSERT_TRUE(station.drift);
    EXPECT_FALSE(station.drift->isLasting);
    EXPECT_EQ(station.drift->first, 13U);
    EXPECT_EQ(station.drift->last, 13U);
    EXPECT_NEAR(station.drift->change, 9.5 - 10.5, exactly);
}

TEST_F(TrendTest, LoneRunDoesNotWidenTheLimitsOfTheOthers) {
    const std::vector<double> usual{10.5, 10.6, 10.5, 10.6, 10.5, 10.6, 10.5, 10.6, 10.5, 10.6};
    std::vector<double> withLone = usual;
    withLone.insert(withLone.begin() + 4, 15.5);
    const StationTrend station = ThirdOf(withLone);
    EXPECT_EQ(Beyond(station), " 4");
    EXPECT_EQ(station.leftOut, 1U);
    const ControlLimits expected = ControlLimitsOf(usual).value();
    EXPECT_NEAR(station.limits->sigma, expected.sigma, exactly);
    EXPECT_NEAR(station.limits->Upper() - station.limits->Lower(),
                expected.Upper() - expected.Lower(), exactly);
    EXPECT_FALSE(station.drift->isLasting);
    EXPECT_EQ(station.drift->last, 4U);
    EXPECT_NEAR(station.farthest, 4.95 / expected.sigma, exactly);
}

TEST_F(TrendTest, DriftAfterALoneRunIsFound) {
    const StationTrend station = ThirdOf(
        {10.5, 10.6, 10.5, 15.5, 10.5, 10.6, 10.5, 10.6, 10.5, 10.6, 11.5, 11.6, 11.5, 11.6, 11.5});
    EXPECT_EQ(Beyond(station), " 3 10 11 12 13 14");
    EXPECT_EQ(station.leftOut, 1U);
    ASSERT_TRUE(station.drift->IsNow());
    EXPECT_EQ(station.drift->first, 10U) << "a place among all runs";
    EXPECT_EQ(station.drift->last, 14U);
    EXPECT_NEAR(station.drift->change, 1, exactly);
    EXPECT_LT(station.farthest, 10) << "that of the drift, not that of the lone run";
}

/// Runs of 10.5 and 10.6 in turn.
std::vector<double> InTurn(std::size_t count) {
    std::vector<double> powers;
    while (powers.size() < count)
        powers.push_back(powers.size() % 2 == 0 ? 10.5 : 10.6);
    return powers;
}

TEST_F(TrendTest, LoneRunWithinADriftIsNotItsFarthest) {
    for (const double lone : {-6, 6}) {
        SCOPED_TRACE(lone);
        data = {};
        AddItems(1);
        std::vector<double> powers = InTurn(30);
        for (std::size_t run = 18; run < powers.size(); ++run)
            powers[run] += 0.5;
        powers[24] += lone;
        const StationTrend station = ThirdOf(powers);
        EXPECT_EQ(station.leftOut, 1U);
        ASSERT_TRUE(station.drift->IsNow());
        EXPECT_EQ(station.drift->first, 19U);
        EXPECT_NEAR(station.farthest, 3.7756, 0.0001);
    }
}

TEST_F(TrendTest, RunsTogetherAreADriftThoughALaterOneIsAlone) {
    std::vector<double> powers = InTurn(24);
    for (const std::size_t run : {6U, 7U, 8U, 16U})
        powers[run] += 2;
    const StationTrend station = ThirdOf(powers);
    EXPECT_EQ(Beyond(station), " 6 7 8 16");
    EXPECT_EQ(station.leftOut, 0U);
    EXPECT_EQ(station.drift->first, 6U);
    EXPECT_EQ(station.drift->last, 8U);
    EXPECT_TRUE(station.drift->isLasting);
}

TEST_F(TrendTest, FirstRunsBeyondAndAFewFarOnTheOtherSideAreTold) {
    std::vector<double> powers(30, 10);
    powers[0] = powers[1] = 10.07;
    for (std::size_t run = 15; run < 19; ++run)
        powers[run] = 9;
    AddRuns(AddStation("A"), powers);
    const StationTrend station = TrendOf(data).stations[0];
    EXPECT_EQ(Beyond(station), " 0 1 15 16 17 18");
    EXPECT_EQ(station.drift->first, 15U);
    EXPECT_EQ(station.drift->last, 18U);
    EXPECT_NEAR(station.drift->change, -1, exactly);
}

TEST_F(TrendTest, LoneRunIsLeftOutOnlyWhereEnoughOthersAreLeft) {
    EXPECT_EQ(ThirdOf({10.5, 10.5, 10.5, 15.5, 10.5, 10.5, 10.5, 10.5}).leftOut, 0U);
}

TEST_F(TrendTest, LastRunAloneBeyondIsALastingDrift) {
    const StationTrend station =
        ThirdOf({10.5, 10.6, 10.5, 10.6, 10.5, 10.6, 10.5, 10.6, 10.5, 10.6, 10.5, 15});
    EXPECT_EQ(Beyond(station), " 11");
    EXPECT_TRUE(station.drift->isLasting);
    EXPECT_NEAR(station.drift->change, 15 - 10.5, exactly);
}

TEST_F(TrendTest, FirstRunsBeyondAreHeldAgainstThoseAfter) {
    const StationTrend station = ThirdOf({15, 15, 10.5, 10.6, 10.5, 10.6, 10.5, 10.6, 10.5, 10.6,
                                          10.5, 10.6, 10.5, 10.6, 10.5, 10.6});
    ASSERT_TRUE(station.drift);
    EXPECT_EQ(station.drift->first, 0U);
    EXPECT_EQ(station.drift->last, 1U);
    EXPECT_NEAR(station.drift->change, 15 - 10.55, exactly);
}

TEST_F(TrendTest, WhatOneStationAloneHasIsHeldAgainstNothing) {
    AddItems(2);
    AddStation("A");
    AddStation("B");
    AddRun(0, {10, 20});
    AddRun(1, {12, None});
    AddRun(0, {None, 20});
    const Trend trend = TrendOf(data);
    EXPECT_EQ(trend.basis, TrendBasis::TwoStations);
    EXPECT_EQ(trend.sharedItems, 1U);
    ASSERT_EQ(NamesInOrder(trend), "A B");
    ASSERT_EQ(trend.stations[0].points.size(), 1U) << "its second run shares nothing";
    EXPECT_EQ(trend.stations[0].points[0].count, 1U);
    EXPECT_DOUBLE_EQ(trend.stations[0].points[0].median, -1);
    EXPECT_DOUBLE_EQ(trend.stations[1].points[0].median, 1);
    EXPECT_EQ(trend.stations[0].powers, 3U);
}

TEST_F(TrendTest, StationsThatShareNothingHaveNeitherOffsetsNorLimits) {
    AddItems(2);
    AddStation("A");
    AddStation("B");
    for (int run = 0; run < 8; ++run) {
        AddRun(0, {10, None});
        AddRun(1, {None, 10});
    }
    const Trend trend = TrendOf(data);
    EXPECT_EQ(trend.sharedItems, 0U);
    EXPECT_FALSE(trend.stations[0].offset);
    EXPECT_EQ(trend.CountTooFew(), 2U);
    EXPECT_FALSE(trend.IsFine());
}

TEST_F(TrendTest, StationThatHasRunWithoutBeingHeldAgainstAnythingIsNeverFine) {
    AddItems(2);
    for (int run = 0; run < 8; ++run) {
        for (const char* const name : {"A", "B", "C"}) {
            if (run == 0)
                AddStation(name);
            AddRun(static_cast<std::uint32_t>(name[0] - 'A'), {10, None});
        }
    }
    ASSERT_TRUE(TrendOf(data).IsFine());
    const StationTrend third = TrendOf(data).stations[2];
    EXPECT_FALSE(third.isBehind);
    EXPECT_FALSE(third.hasRunSince);

    // It has a point every third day: three times that may pass.
    const std::int64_t last = data.visits.back().measuredAt;
    for (const std::int64_t days : {1, 9, 10}) {
        SCOPED_TRACE(days);
        AddRun(2, {None, None});
        if (days == 1)
            data.rows.push_back({static_cast<std::uint32_t>(data.visits.size() - 1), 1, 14});
        data.visits.back().measuredAt = last + days * Day;
        const Trend trend = TrendOf(data);
        EXPECT_TRUE(trend.stations[2].hasRunSince) << "what it measured, no other one has";
        EXPECT_EQ(trend.stations[2].isBehind, days == 10);
        EXPECT_EQ(trend.CountNotFollowed(), days == 10 ? 1U : 0U);
        EXPECT_EQ(trend.IsFine(), days != 10);
        EXPECT_EQ(trend.withoutReference, 1U);
    }
}

TEST_F(TrendTest, StationWithoutRunsForLongIsBehindAndFine) {
    AddSteady("A", 10);
    AddSteady("B", 10);
    AddSteady("C", 10);
    const std::int64_t lastOfA = data.visits[7].measuredAt;
    data.visits.back().measuredAt = lastOfA + 28 * Day;
    EXPECT_FALSE(TrendOf(data).stations[0].isBehind);
    data.visits.back().measuredAt = lastOfA + 28 * Day + 1;
    const Trend trend = TrendOf(data);
    EXPECT_TRUE(trend.stations[0].isBehind);
    EXPECT_FALSE(trend.stations[0].hasRunSince);
    EXPECT_FALSE(trend.stations[2].isBehind);
    EXPECT_TRUE(trend.IsFine());
}

TEST_F(TrendTest, StationThatHasRunSinceIsBehindByADayAtLeast) {
    for (const char* const name : {"A", "B"})
        AddRuns(AddStation(name), std::vector<double>(8, 10));
    for (std::size_t visit = 0; visit < data.visits.size(); ++visit)
        data.visits[visit].measuredAt = FirstDay + 60 * static_cast<std::int64_t>(visit);
    const std::int64_t last = data.visits.back().measuredAt;
    AddRun(1, {None});
    data.visits.back().measuredAt = last + Day;
    EXPECT_FALSE(TrendOf(data).stations[1].isBehind);
    data.visits.back().measuredAt = last + Day + 1;
    EXPECT_TRUE(TrendOf(data).stations[1].isBehind);
}

TEST_F(TrendTest, StationsAreHeldAgainstThoseOfTheirGroupAlone) {
    AddItems(3);
    const std::vector<std::vector<double>> powers{
        {10, None, None}, {10.1, 20, None}, {None, 20.1, None}, {10.2, None, None},
        {None, None, 30}, {None, None, 30}, {None, None, 32}};
    for (std::size_t station = 0; station < powers.size(); ++station) {
        AddStation(std::string(1, static_cast<char>('A' + station)));
        for (int run = 0; run < 8; ++run)
            AddRun(static_cast<std::uint32_t>(station), powers[station]);
    }
    const Trend trend = TrendOf(data);
    EXPECT_EQ(NamesInOrder(trend), "A B C D E F G");
    EXPECT_EQ(trend.groups, 2U);
    const std::vector<StationTrend>& stations = trend.stations;
    for (const std::size_t station : {1U, 2U, 3U})
        EXPECT_EQ(stations[station].group, stations[0].group);
    for (const std::size_t station : {5U, 6U})
        EXPECT_EQ(stations[station].group, stations[4].group);
    EXPECT_NE(stations[4].group, stations[0].group);
    EXPECT_NEAR(*stations[6].offset, 2, exactly);
    EXPECT_FALSE(stations[6].isApart) << "what A to D read is no measure of it";
}

TEST_F(TrendTest, DriftThatIsOverComesAfterOneThatGoesOnAndIsFine) {
    AddSteady("A", 10);
    AddSteady("B", 11);
    AddRuns(AddStation("C"),
            {10.5, 10.6, 10.5, 10.6, 10.5, 5, 5, 10.5, 10.6, 10.5, 10.6, 10.5, 10.6, 10.5, 10.6});
    EXPECT_EQ(TrendOf(data).CountDrifting(), 0U);
    EXPECT_TRUE(TrendOf(data).IsFine());
    AddRuns(AddStation("D"), {10.5, 10.6, 10.5, 10.6, 10.5, 10.6, 10.5, 10.6, 10.5, 11.2, 11.2});
    const Trend trend = TrendOf(data);
    EXPECT_EQ(NamesInOrder(trend), "D C A B");
    EXPECT_EQ(trend.CountDrifting(), 1U);
    EXPECT_TRUE(trend.stations[1].drift->isLasting);
}

TEST_F(TrendTest, TheOrderOfTheRowsChangesNoFigure) {
    // Their sum is another one from behind: 0.6000000000000001 and 0.6.
    AddRuns(AddStation("A"), {0.1, 0.2, 0.3});
    const Trend trend = TrendOf(data);
    std::reverse(data.rows.begin(), data.rows.end());
    EXPECT_EQ(TrendOf(data).stations[0].points[0].median, trend.stations[0].points[0].median);
}

TEST_F(TrendTest, RunOfFewerMeasurementsThanUsualHasWiderLimits) {
    AddItems(4);
    for (const char* const name : {"A", "B", "C"})
        AddStation(name);
    for (int run = 0; run < 10; ++run) {
        const double power = run % 2 == 0 ? 10 : 10.1;
        for (std::uint32_t station = 0; station < 3; ++station)
            AddRun(station, {power, power, power, power});
    }
    const double limit = TrendOf(data).stations[2].limits->Upper();
    // The root of a quarter of the measurements is a half.
    AddRun(2, {10.05 + 1.5 * limit, None, None, None});
    EXPECT_EQ(TrendOf(data).CountDrifting(), 0U);
    AddRun(2, {10.05 + 1.5 * limit, 10.05 + 1.5 * limit, 10.05 + 1.5 * limit, 10.05 + 1.5 * limit});
    EXPECT_EQ(TrendOf(data).CountDrifting(), 1U);
}

TEST_F(TrendTest, ChangeThatIsNotShownIsNone) {
    for (const char* const name : {"A", "B", "C"})
        AddSteady(name, 10);
    AddRun(2, {10.009});
    EXPECT_TRUE(TrendOf(data).IsFine());
    AddRun(2, {10.03});
    EXPECT_FALSE(TrendOf(data).IsFine());
}

TEST_F(TrendTest, MeasurementsThatTheLastRunHasLostAreNeverFine) {
    AddPairOfTwoItems();
    data.missing = {{13, 1}};
    EXPECT_TRUE(TrendOf(data).IsFine()) << "in an earlier run";
    AddRun(1, {10, None});
    EXPECT_TRUE(TrendOf(data).IsFine()) << "that was not asked for it";
    data.missing.push_back({16, 1});
    const Trend trend = TrendOf(data);
    EXPECT_FALSE(trend.IsFine());
    EXPECT_EQ(trend.CountWithLost(), 1U);
    ASSERT_EQ(NamesInOrder(trend), "B A");
    EXPECT_EQ(trend.stations[0].lost, 1U);
    EXPECT_EQ(trend.stations[0].asked, 2U);
    EXPECT_EQ(trend.stations[0].lastLoss, 16U);
    EXPECT_FALSE(trend.stations[0].HasLostAll());
    data.rows.push_back({16, 1, 12});
    EXPECT_TRUE(TrendOf(data).IsFine()) << "another line of the run has it";
}

TEST_F(TrendTest, WhatIsLostIsLostWhateverRanSinceThenWithoutAskingForIt) {
    AddPairOfTwoItems();
    AddRun(1, {10, None});
    AddRun(1, {None, 12});
    data.missing = {{16, 1}, {17, 0}};
    EXPECT_EQ(TrendOf(data).stations[0].lost, 1U) << "the second item was made again";
    AddRun(1, {None, None});
    AddRun(1, {None, 12});
    data.missing.push_back({18, 1});
    const StationTrend station = TrendOf(data).stations[0];
    EXPECT_EQ(station.lost, 1U);
    EXPECT_EQ(station.lastLoss, 17U) << "not the last run, which asked for the other item only";
}

TEST_F(TrendTest, LastLossIsTheLatestOfSeveral) {
    AddPairOfTwoItems();
    AddRun(1, {None, None});
    AddRun(1, {None, None});
    data.missing = {{16, 1}, {17, 0}};
    const StationTrend station = TrendOf(data).stations[0];
    EXPECT_EQ(station.lastLoss, 17U);
    EXPECT_TRUE(station.HasLostAll());
}

TEST_F(TrendTest, WhatAStationHasNeverMeasuredIsLostWhereAnotherHasMeasuredIt) {
    AddItems(2);
    AddSteady("A", 10);
    AddSteady("B", 10);
    AddRun(0, {10, 12});
    AddRun(1, {10, None});
    data.missing = {{17, 1}};
    EXPECT_EQ(TrendOf(data).CountWithLost(), 1U);
    EXPECT_EQ(TrendOf(data).stations[0].lastLoss, 17U);
}

TEST_F(TrendTest, RunWithoutAnyPowerLosesAllThatWasMeasuredBefore) {
    AddSteady("A", 10);
    AddSteady("B", 10);
    AddRun(1, {None});
    data.missing = {{16, 0}};
    const Trend trend = TrendOf(data);
    EXPECT_EQ(trend.stations[0].lost, 1U);
    EXPECT_EQ(trend.stations[0].lastLoss, 16U);
    EXPECT_TRUE(trend.stations[0].HasLostAll());
}

TEST_F(TrendTest, StationWhoseRunsDifferFarMoreThanTheOthersIsErratic) {
    AddRuns(AddStation("A"), {10, 10.1, 10, 10.1, 10, 10.1, 10, 10.1, 10, 10.1});
    AddRuns(AddStation("B"), {10, 10.1, 10, 10.1, 10, 10.1, 10, 10.1, 10, 10.1});
    AddRuns(AddStation("C"), {10, 10.39, 10, 10.39, 10, 10.39, 10, 10.39});
    EXPECT_TRUE(TrendOf(data).IsFine()) << "less than four times as much";
    AddRuns(AddStation("D"), {10, 10.5, 10, 10.5, 10, 10.5, 10, 10.5, 10, 10.5});
    const Trend trend = TrendOf(data);
    EXPECT_EQ(trend.CountErratic(), 1U);
    EXPECT_FALSE(trend.IsFine());
    ASSERT_EQ(NamesInOrder(trend), "D A B C");
    EXPECT_NEAR(trend.stations[0].timesAsErratic, 5, exactly);
}

TEST_F(TrendTest, OneErraticStationDoesNotHideAnother) {
    AddRuns(AddStation("A"), {10, 10.1, 10, 10.1, 10, 10.1, 10, 10.1, 10, 10.1});
    AddRuns(AddStation("B"), {10, 10.6, 10, 10.6, 10, 10.6, 10, 10.6, 10, 10.6});
    EXPECT_EQ(TrendOf(data).CountErratic(), 1U) << "one of two";
    AddRuns(AddStation("C"), {10, 10.4, 10, 10.4, 10, 10.4, 10, 10.4, 10, 10.4});
    EXPECT_EQ(TrendOf(data).CountErratic(), 1U) << "four times the quieter of two is not enough";
    AddRuns(2, {10, 10.6, 10, 10.6, 10, 10.6, 10, 10.6, 10, 10.6, 10, 10.6, 10, 10.6, 10, 10.6});
    AddRuns(2, {10, 10.6, 10, 10.6, 10, 10.6, 10, 10.6, 10, 10.6, 10, 10.6, 10, 10.6, 10, 10.6});
    EXPECT_EQ(TrendOf(data).CountErratic(), 2U);
}

TEST_F(TrendTest, StationsThatAllDriftToOneSideHaveACommonDrift) {
    for (const char* const name : {"A", "B"})
        AddRuns(AddStation(name), {10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 14});
    EXPECT_EQ(TrendOf(data).CountDrifting(), 2U);
    EXPECT_FALSE(TrendOf(data).HasCommonDrift()) << "of two, one may be a large part";
    AddSteady("C", 10);
    EXPECT_FALSE(TrendOf(data).HasCommonDrift());
    AddRuns(2, {10, 10, 14});
    EXPECT_TRUE(TrendOf(data).HasCommonDrift());
    AddRuns(AddStation("D"), {10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 10, 6});
    EXPECT_EQ(TrendOf(data).CountDrifting(), 4U);
    EXPECT_FALSE(TrendOf(data).HasCommonDrift());
}

TEST_F(TrendTest, ErraticIsWhereAThirdOfTheNeighboursDiffer) {
    AddSteady("A", 10);
    AddSteady("B", 10);
    AddRuns(AddStation("C"), {10, 10, 10, 12, 10, 10, 10, 10, 10, 10, 10, 12});
    EXPECT_EQ(TrendOf(data).CountErratic(), 0U) << "3 of 11";
    AddRun(2, {10});
    EXPECT_EQ(TrendOf(data).CountErratic(), 1U) << "4 of 12";
}

TEST_F(TrendTest, RunsThatDifferLittleAreNotErratic) {
    AddSteady("A", 10);
    AddSteady("B", 10);
    AddRuns(AddStation("C"), {10, 10.2, 10, 10.2, 10, 10.2, 10, 10.2, 10, 10.2});
    EXPECT_EQ(TrendOf(data).CountErratic(), 0U);
}

TEST_F(TrendTest, StationsAreFollowedToTheMomentThatIsTold) {
    AddSteady("A", 10);
    AddSteady("B", 10);
    constexpr std::int64_t days = 29;
    data.followedTo = data.visits.back().measuredAt + days * Day;
    for (const StationTrend& station : TrendOf(data).stations)
        EXPECT_TRUE(station.isBehind);
    data.followedTo = data.visits.front().measuredAt;
    for (const StationTrend& station : TrendOf(data).stations)
        EXPECT_FALSE(station.isBehind);
}

TEST_F(TrendTest, PairBesideAnotherGroupIsTold) {
    AddItems(2);
    for (const char* const name : {"A", "B", "C"})
        AddSteady(name, 10);
    EXPECT_FALSE(TrendOf(data).hasPairs);
    for (const char* const name : {"D", "E"}) {
        const std::uint32_t station = AddStation(name);
        for (int run = 0; run < 8; ++run)
            AddRun(station, {None, 10});
    }
    EXPECT_TRUE(TrendOf(data).hasPairs);
}

TEST_F(TrendTest, OneStationIsHeldAgainstItsOwnMean) {
    AddRuns(AddStation("A"), {10, 10.2, 10, 10.2, 10, 10.2, 10, 10.2, 10, 14});
    const Trend trend = TrendOf(data);
    EXPECT_EQ(trend.basis, TrendBasis::OwnMean);
    EXPECT_FALSE(trend.stations[0].offset) << "there is nothing that it could be an offset from";
    EXPECT_NEAR(trend.stations[0].points[0].median, 10 - 10.48, exactly);
    EXPECT_EQ(Beyond(trend.stations[0]), " 9");
}

TEST_F(TrendTest, StationWithSevenRunsIsNeverFine) {
    AddSteady("A", 10);
    AddSteady("B", 11);
    AddRuns(AddStation("C"), std::vector<double>(7, 10.5));
    EXPECT_FALSE(TrendOf(data).IsFine());
    EXPECT_EQ(TrendOf(data).CountTooFew(), 1U);
    AddRun(2, {10.5});
    EXPECT_TRUE(TrendOf(data).IsFine());
}

TEST_F(TrendTest, NoPowerIsNotFine) {
    EXPECT_EQ(TrendOf(data).basis, TrendBasis::Nothing);
    EXPECT_FALSE(TrendOf(data).IsFine());
    AddStation("A");
    AddRun(0, {None});
    EXPECT_EQ(TrendOf(data).basis, TrendBasis::Nothing);
}

TEST_F(TrendTest, OffsetFarFromThoseOfAtLeastThreeOthersIsApart) {
    AddSteady("A", 10);
    AddSteady("B", 10.1);
    AddSteady("C", 10.2);
    EXPECT_EQ(NamesInOrder(TrendOf(data)), "A B C");
    AddSteady("D", 13);
    const Trend trend = TrendOf(data);
    ASSERT_EQ(NamesInOrder(trend), "D A B C");
    EXPECT_TRUE(trend.stations[0].isApart);
    EXPECT_NEAR(*trend.stations[0].offset, 13 - 10.15, exactly);
    EXPECT_FALSE(trend.stations[1].isApart);
    EXPECT_TRUE(trend.IsFine()) << "an offset alone is no drift";
}

TEST_F(TrendTest, OffsetOfAStationWithAnOutlierIsHeldAgainstTheOthersToo) {
    AddSteady("A", 10);
    AddSteady("B", 10.1);
    AddRuns(AddStation("C"), {5, 10.2, 10.2, 10.2, 10.2, 10.2, 10.2, 10.2, 10.2, 10.2, 10.2});
    AddRuns(AddStation("D"), {10.1, 13, 13, 13, 13, 13, 13, 13, 13, 13, 13});
    const Trend trend = TrendOf(data);
    ASSERT_EQ(NamesInOrder(trend), "C D A B");
    EXPECT_FALSE(trend.stations[0].drift->isLasting);
    EXPECT_FALSE(trend.stations[0].isApart);
    EXPECT_FALSE(trend.stations[1].drift->isLasting);
    EXPECT_TRUE(trend.stations[1].isApart) << "C is one of the three others";
}

TEST_F(TrendTest, OffsetOfADriftingStationIsNotCalledApart) {
    AddSteady("A", 10);
    AddSteady("B", 10.1);
    AddSteady("C", 10.2);
    AddRuns(AddStation("D"), {11, 11, 11, 11, 11, 11, 11, 11, 11, 11, 15});
    const Trend trend = TrendOf(data);
    ASSERT_EQ(NamesInOrder(trend), "D A B C");
    EXPECT_TRUE(trend.stations[0].drift->isLasting);
    EXPECT_FALSE(trend.stations[0].isApart);
}

TEST_F(TrendTest, OffsetFarFromThoseOfTwoOthersIsNotCalledApart) {
    AddSteady("A", 10);
    AddSteady("B", 10.1);
    AddSteady("C", 99);
    for (const StationTrend& station : TrendOf(data).stations)
        EXPECT_FALSE(station.isApart);
}

TEST_F(TrendTest, PowersOutOfLimitsAreCountedByStation) {
    AddItems(2);
    AddSteady("A", 10);
    AddSteady("B", 10.1);
    AddRun(1, {10.100000001, 50});
    const Limit limit = AtMost("10.1"_dB);
    const std::vector<const Limit*> limits{&limit, nullptr};
    const Trend trend = TrendOf(data, &limits);
    EXPECT_TRUE(trend.isJudged);
    EXPECT_EQ(trend.CountOutOfLimits(), 1U) << "a bound belongs to what passes";
    for (const StationTrend& station : trend.stations) {
        const bool isSecond = station.station == 1;
        EXPECT_EQ(station.outOfLimits, isSecond ? 1U : 0U);
        EXPECT_EQ(station.lastOut, isSecond ? 16U : 0U);
        EXPECT_EQ(station.withoutLimit, isSecond ? 1U : 0U);
        EXPECT_EQ(station.powers, isSecond ? 10U : 8U);
    }
}

TEST_F(TrendTest, SteadyStationWithAPowerOutOfLimitsIsNotFine) {
    AddSteady("A", 10);
    AddSteady("B", 10);
    ASSERT_TRUE(TrendOf(data).IsFine());
    const Limit limit = AtMost("9"_dB);
    const std::vector<const Limit*> limits{&limit};
    EXPECT_FALSE(TrendOf(data, &limits).IsFine());
}

TEST_F(TrendTest, LimitsThatFitNoPowerAreNotFine) {
    AddItems(2);
    AddSteady("A", 10);
    AddSteady("B", 10);
    std::vector<const Limit*> limits{nullptr, nullptr};
    EXPECT_TRUE(TrendOf(data, &limits).HasNoLimit());
    EXPECT_FALSE(TrendOf(data, &limits).IsFine());
    EXPECT_FALSE(TrendOf(data).HasNoLimit()) << "none were given";
    AddRun(0, {10, 10});
    const Limit limit = AtMost("11"_dB);
    limits[1] = &limit;
    const Trend trend = TrendOf(data, &limits);
    EXPECT_EQ(trend.CountWithoutLimit(), 17U);
    EXPECT_EQ(trend.CountPowers(), 18U);
    EXPECT_FALSE(trend.HasNoLimit());
    EXPECT_TRUE(trend.IsFine()) << "one power has a limit";
}

TEST_F(TrendTest, LimitsAreThoseOfTheItemsSettings) {
    AddItems(2);
    SettingPattern pattern;
    pattern.values = {texts.Text("37")};
    Limit limit = AtMost("9"_dB);
    limit.settings[static_cast<std::size_t>(Setting::Channel)] = &pattern;
    LimitTable table(Limits{{limit}, {}});
    const std::vector<const Limit*> limits = LimitsOf(data, table);
    ASSERT_EQ(limits.size(), 2U);
    EXPECT_EQ(limits[0], nullptr);
    ASSERT_NE(limits[1], nullptr);
    EXPECT_EQ(limits[1]->maximum, "9"_dB);
}

TEST_F(TrendTest, PowersOverTimeAreThoseOfTheOneItem) {
    AddStation("A");
    AddRun(0, {10});
    AddRun(0, {None});
    AddRun(0, {12});
    data.rows.push_back({2, 0, 13});
    const Limit limit = AtMost("12.5"_dB);
    const std::vector<const Limit*> limits{&limit};
    const std::vector<TrendPower> powers = PowersOf(data, &limits);
    ASSERT_EQ(powers.size(), 2U);
    EXPECT_EQ(powers[0].visit, 0U);
    EXPECT_DOUBLE_EQ(powers[0].power, 10);
    EXPECT_FALSE(powers[0].isOut);
    EXPECT_EQ(powers[1].visit, 2U);
    EXPECT_DOUBLE_EQ(powers[1].power, 12.5) << "the mean of repeated lines";
    EXPECT_TRUE(powers[1].isOut) << "one of them is out";
    AddItems(2);
    EXPECT_TRUE(PowersOf(data).empty());
}

} // namespace
} // namespace Bench
