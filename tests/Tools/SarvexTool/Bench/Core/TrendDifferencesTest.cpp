#include "Tools/SarvexTool/Bench/Core/TrendDifferences.h"
#include "tests/Tools/SarvexTool/Bench/Core/TrendFixture.h"

#include <gtest/gtest.h>

#include <algorithm>

namespace Bench {
namespace {

constexpr double nearly = 1e-5;
constexpr double nothing = NAN;

class TrendDifferencesTest : public testing::Test, protected TrendFixture {
protected:
    /// The medians of the visits' differences; "nothing" for a visit without any.
    std::vector<double> Medians(std::size_t stations) const {
        TrendDifferences differences(data, stations);
        std::vector<double> medians;
        for (std::size_t visit = 0; visit < data.visits.size(); ++visit)
            medians.push_back(differences.Of(visit).empty() ? nothing
                                                            : MedianOf(differences.Of(visit)));
        return medians;
    }

    static void ExpectNear(const std::vector<double>& found, const std::vector<double>& expected) {
        ASSERT_EQ(found.size(), expected.size());
        for (std::size_t place = 0; place < found.size(); ++place) {
            SCOPED_TRACE(place);
            EXPECT_EQ(std::isnan(found[place]), std::isnan(expected[place]));
            if (!std::isnan(expected[place])) {
                EXPECT_NEAR(found[place], expected[place], nearly);
            }
        }
    }
};

TEST_F(TrendDifferencesTest, ReferenceIsTheMedianOfTheStationsMeans) {
    AddStation("A");
    AddStation("B");
    AddStation("C");
    AddRuns(0, {10, 12});
    AddRuns(1, {11});
    AddRuns(2, {20});
    ExpectNear(Medians(3), {-1, 1, 0, 9});
}

TEST_F(TrendDifferencesTest, EachDeviceWithEachFirmwareHasAReferenceOfItsOwn) {
    AddStation("A");
    AddStation("B");
    for (const std::uint32_t station : {0U, 1U}) {
        const double offset = station;
        AddRun(station, {10 + offset}, "one", "1.4");
        AddRun(station, {12 + offset}, "one", "1.5");
        AddRun(station, {15 + offset}, "two", "1.5");
        AddRun(station, {17 + offset}, "two", "");
    }
    const TrendDifferences differences(data, 2);
    EXPECT_TRUE(differences.AreByDevice());
    EXPECT_EQ(differences.CountReferences(), 4U);
    ExpectNear(Medians(2), {-.5, -.5, -.5, -.5, .5, .5, .5, .5});
}

TEST_F(TrendDifferencesTest, NamesThatReadAlikeTogetherAreDifferentDevices) {
    AddStation("A");
    AddStation("B");
    for (const std::uint32_t station : {0U, 1U}) {
        AddRun(station, {10}, "DUT", "11");
        AddRun(station, {20}, "DUT1", "1");
    }
    EXPECT_EQ(TrendDifferences(data, 2).CountReferences(), 2U);
}

// Without the polish the reference of "one" would be half-way between A and B, and that of "two"
// between A and C: A would seem to change by 0.25 dB with the device.
TEST_F(TrendDifferencesTest, StationReadsTheSameWhicheverOthersHaveMeasuredTheDevice) {
    AddStation("A");
    AddStation("B");
    AddStation("C");
    AddRun(0, {10.5}, "one");
    AddRun(1, {9.5}, "one");
    AddRun(0, {15.5}, "two");
    AddRun(2, {15.0}, "two");
    ExpectNear(Medians(3), {.375, -.625, .375, -.125});
}

TEST_F(TrendDifferencesTest, StationReadsTheSameAcrossAChainOfStations) {
    constexpr std::uint32_t stations = 6;
    for (std::uint32_t station = 0; station < stations; ++station)
        AddStation(std::to_string(station));
    for (std::uint32_t station = 0; station + 1 < stations; ++station) {
        const std::string device = "DUT " + std::to_string(station);
        AddRun(station, {10.0 + station * station}, device);
        AddRun(station + 1, {10.0 + (station + 1) * (station + 1)}, device);
    }
    constexpr double shown = 0.005;
    const std::vector<double> medians = Medians(stations);
    for (std::size_t visit = 1; visit + 1 < medians.size(); visit += 2) {
        SCOPED_TRACE(visit);
        EXPECT_NEAR(medians[visit], medians[visit + 1], shown) << "one station, two devices";
    }
    for (std::size_t visit = 0; visit < medians.size(); visit += 2) {
        SCOPED_TRACE(visit);
        EXPECT_NEAR(medians[visit + 1] - medians[visit], static_cast<double>(visit) + 1, nearly);
    }
}

TEST_F(TrendDifferencesTest, WhatOneStationAloneHasMeasuredTakesNoPart) {
    AddItems(2);
    AddStation("A");
    AddStation("B");
    AddRun(0, {10, 20});
    AddRun(1, {12, nothing});
    AddRun(0, {10, nothing}, "other");
    const TrendDifferences differences(data, 2);
    EXPECT_EQ(differences.CountReferences(), 1U);
    EXPECT_EQ(differences.Count(), 2U);
    ExpectNear(Medians(2), {-1, 1, nothing});
}

TEST_F(TrendDifferencesTest, DevicesAreNotToldApartWhereNoneWasMeasuredOnTwoStations) {
    AddStation("A");
    AddStation("B");
    AddRun(0, {10}, "one");
    AddRun(1, {12}, "two");
    AddRun(0, {11}, "three");
    EXPECT_FALSE(TrendDifferences(data, 2).AreByDevice());
    EXPECT_EQ(TrendDifferences(data, 2).CountReferences(), 1U);
    ExpectNear(Medians(2), {-1.25, .75, -.25});
}

TEST_F(TrendDifferencesTest, OneStationIsHeldAgainstItsOwnMeanOfAllDevices) {
    AddStation("A");
    AddRun(0, {10}, "one");
    AddRun(0, {13}, "two");
    EXPECT_FALSE(TrendDifferences(data, 1).AreByDevice());
    ExpectNear(Medians(1), {-1.5, 1.5});
}

TEST_F(TrendDifferencesTest, TheOrderOfTheRowsChangesNoFigure) {
    // Their sum is another one from behind: 0.6000000000000001 and 0.6.
    AddRuns(AddStation("A"), {0.1, 0.2, 0.3});
    const std::vector<double> medians = Medians(1);
    std::reverse(data.rows.begin(), data.rows.end());
    EXPECT_EQ(Medians(1), medians);
}

TEST_F(TrendDifferencesTest, NothingMeasuredHasNoDifferences) {
    EXPECT_EQ(TrendDifferences(data, 0).Count(), 0U);
    AddStation("A");
    AddRun(0, {nothing});
    ExpectNear(Medians(0), {nothing});
}

} // namespace
} // namespace Bench
