#include "Tools/SarvexTool/Bench/Core/Differences.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

class DifferencesTest : public testing::Test {
protected:
    /// One line on chain A: band, rate and power.
    struct Line {
        const char* band;
        const char* rate;
        const char* power;
    };

    RunResult RunOf(std::initializer_list<Line> lines) {
        RunResultBuilder builder;
        LineNumber number = 2;
        for (const Line& line : lines)
            builder.Add(fixture.RowOf(
                number++,
                {{Setting::Chains, "A"}, {Setting::Band, line.band}, {Setting::Rate, line.rate}},
                line.power, ""));
        return builder.Take();
    }

    static std::string LineOf(const RunResult& run, const std::optional<std::uint32_t>& place) {
        return place ? std::to_string(run.LineOf(run.measurements[*place])) : "-";
    }

    /// One line for each difference: its kind, the lines in both runs, the change.
    static std::string Describe(const RunResult& oldRun, const RunResult& newRun,
                                const Differences& found) {
        constexpr const char* kinds[] = {"changed", "measured in old", "measured in new", "in old",
                                         "in new"};
        std::string text;
        for (const Difference& difference : found.all)
            text += std::string(kinds[static_cast<std::size_t>(difference.kind)]) + " " +
                    LineOf(oldRun, difference.oldMeasurement) + " " +
                    LineOf(newRun, difference.newMeasurement) + " " + difference.change.ToText() +
                    (difference.isWithinNoise ? " noise" : "") + "\n";
        return text;
    }

    std::string Compared(std::initializer_list<Line> oldLines, std::initializer_list<Line> newLines,
                         Decimal tolerance = "0.5"_dB) {
        const RunResult oldRun = RunOf(oldLines);
        const RunResult newRun = RunOf(newLines);
        return Describe(oldRun, newRun, Compare(oldRun, newRun, tolerance));
    }

    CoreFixture fixture;
};

TEST_F(DifferencesTest, EachNewMeasurementNamesItsOldOneHoweverSmallTheChange) {
    const RunResult oldRun =
        RunOf({{"5", "MCS0", "10"}, {"6", "MCS0", ""}, {"5", "MCS0", "11"}, {"2.4", "11", "9"}});
    const RunResult newRun =
        RunOf({{"6", "MCS0", "12"}, {"5", "MCS0", "10"}, {"5", "MCS0", "11"}, {"7", "11", "9"}});
    const std::vector<std::optional<std::uint32_t>> expected{1, 0, 2, std::nullopt};
    EXPECT_EQ(Compare(oldRun, newRun, "0.5"_dB).oldOfNew, expected);
}

TEST_F(DifferencesTest, RunsAreComparedByConfigurationAndNotByRow) {
    EXPECT_EQ(Compared({{"5", "MCS0", "10"}, {"6", "MCS0", "12"}},
                       {{"6", "MCS0", "12"}, {"5", "MCS0", "11"}}),
              "changed 2 3 1\n");
}

TEST_F(DifferencesTest, ChangeOfExactlyTheToleranceIsNone) {
    EXPECT_EQ(Compared({{"5", "MCS0", "10.1"}}, {{"5", "MCS0", "10.4"}}, "0.3"_dB), "");
    EXPECT_EQ(Compared({{"5", "MCS0", "10.1"}}, {{"5", "MCS0", "10.400000001"}}, "0.3"_dB),
              "changed 2 2 0.300000001\n");
    EXPECT_EQ(Compared({{"5", "MCS0", "10"}}, {{"5", "MCS0", "10"}}, Decimal()), "");
    EXPECT_EQ(Compared({{"5", "MCS0", "10"}}, {{"5", "MCS0", "9.9"}}, Decimal()),
              "changed 2 2 -0.1\n");
}

TEST_F(DifferencesTest, WhatOnlyOneRunHasIsADifferenceMeasuredOrNot) {
    EXPECT_EQ(Compared({{"5", "MCS0", "10"}, {"5", "MCS1", ""}}, {{"5", "MCS0", "10"}}),
              "in old 3 - 0\n");
    EXPECT_EQ(Compared({{"5", "MCS0", "10"}}, {{"5", "MCS0", "10"}, {"5", "MCS1", "9"}}),
              "in new - 3 0\n");
}

TEST_F(DifferencesTest, WhatOnlyOneRunMeasuredIsADifferenceAndWhatNeitherDidIsNone) {
    EXPECT_EQ(Compared({{"5", "MCS0", "10"}, {"5", "MCS1", ""}, {"5", "MCS2", ""}},
                       {{"5", "MCS0", ""}, {"5", "MCS1", "9"}, {"5", "MCS2", ""}}),
              "measured in old 2 2 0\nmeasured in new 3 3 0\n");
}

TEST_F(DifferencesTest, RepeatedConfigurationsArePairedInTheirOrder) {
    EXPECT_EQ(Compared({{"5", "MCS0", "10"}, {"5", "MCS0", "20"}},
                       {{"5", "MCS0", "10"}, {"5", "MCS0", "22"}}),
              "changed 3 3 2\n");
    EXPECT_EQ(Compared({{"5", "MCS0", "10"}, {"5", "MCS0", "20"}}, {{"5", "MCS0", "10"}}),
              "in old 3 - 0\n");
}

TEST_F(DifferencesTest, LargestChangeComesFirstAndEqualOnesFollowTheLines) {
    EXPECT_EQ(
        Compared({{"5", "MCS0", "10"},
                  {"5", "MCS1", "10"},
                  {"5", "MCS2", "10"},
                  {"5", "MCS3", ""},
                  {"5", "MCS4", "1"}},
                 {{"5", "MCS3", "7"}, {"5", "MCS2", "9"}, {"5", "MCS1", "7"}, {"5", "MCS0", "11"}}),
        "changed 3 4 -3\n"
        "changed 2 5 1\n"
        "changed 4 3 -1\n"
        "measured in new 5 2 0\n"
        "in old 6 - 0\n");
}

TEST_F(DifferencesTest, ShiftIsTheMeanOfEachBandAndRate) {
    const RunResult oldRun = RunOf({{"5", "MCS0", "10"},
                                    {"5", "MCS0", "20"},
                                    {"5", "MCS1", "10"},
                                    {"6", "MCS0", "10"},
                                    {"6", "MCS1", ""}});
    const RunResult newRun = RunOf({{"5", "MCS0", "10.25"},
                                    {"5", "MCS0", "20.75"},
                                    {"5", "MCS1", "9"},
                                    {"6", "MCS0", "10"},
                                    {"6", "MCS1", "3"}});
    const Differences found = Compare(oldRun, newRun, "0.5"_dB);
    EXPECT_EQ(found.pairs, 5U);
    ASSERT_EQ(found.shifts.size(), 3U);
    EXPECT_EQ(*found.shifts[0].band + *found.shifts[0].rate, "5MCS0");
    EXPECT_EQ(found.shifts[0].pairs, 2U);
    EXPECT_DOUBLE_EQ(found.shifts[0].mean, 0.5);
    EXPECT_EQ(*found.shifts[1].band + *found.shifts[1].rate, "5MCS1");
    EXPECT_DOUBLE_EQ(found.shifts[1].mean, -1);
    EXPECT_EQ(*found.shifts[2].band + *found.shifts[2].rate, "6MCS0");
    EXPECT_DOUBLE_EQ(found.shifts[2].mean, 0);
}

TEST_F(DifferencesTest, UnknownBandComesFirstAmongTheShifts) {
    RunResultBuilder builder;
    builder.Add(fixture.RowOf(2, {}, "1", ""));
    builder.Add(fixture.RowOf(3, {{Setting::Band, "2.4"}}, "1", ""));
    const RunResult run = builder.Take();
    const Differences found = Compare(run, run, "0.5"_dB);
    ASSERT_EQ(found.shifts.size(), 2U);
    EXPECT_EQ(found.shifts[0].band, nullptr);
    EXPECT_EQ(*found.shifts[1].band, "2.4");
}

TEST_F(DifferencesTest, NoiseIsThePooledDeviationOfRepeats) {
    // Two repeats of two in the old run and one of two in the new: the distances from the means are
    // 1, 1, 2, 2, 0, 0, their squares' sum is 10, and three repeats are beyond the first of each.
    const RunResult oldRun =
        RunOf({{"5", "MCS0", "10"}, {"5", "MCS0", "12"}, {"5", "MCS1", "10"}, {"5", "MCS1", "14"}});
    const RunResult newRun = RunOf(
        {{"5", "MCS0", "11.5"}, {"5", "MCS0", "11.5"}, {"5", "MCS1", "10"}, {"6", "MCS1", "3"}});
    const Differences found = Compare(oldRun, newRun, "0.5"_dB);
    ASSERT_TRUE(found.noise.has_value());
    EXPECT_EQ(*found.noise, 1.825741858) << "the root of 10 / 3";
    EXPECT_EQ(Describe(oldRun, newRun, found), "changed 2 2 1.5 noise\n"
                                               "in old 5 - 0\n"
                                               "in new - 5 0\n");
}

TEST_F(DifferencesTest, ChangeOfExactlyTheNoiseIsWithinIt) {
    // Three repeats at equal distances deviate by the distance.
    EXPECT_EQ(Compared({{"5", "MCS0", "10"},
                        {"5", "MCS0", "10.1"},
                        {"5", "MCS0", "10.2"},
                        {"6", "MCS0", "12"},
                        {"7", "MCS0", "12"}},
                       {{"5", "MCS0", "10"},
                        {"5", "MCS0", "10.1"},
                        {"5", "MCS0", "10.2"},
                        {"6", "MCS0", "12.1"},
                        {"7", "MCS0", "12.100000001"}},
                       Decimal()),
              "changed 6 6 0.100000001\n"
              "changed 5 5 0.1 noise\n");
}

TEST_F(DifferencesTest, RepeatsThatAreAlikeHaveNoNoise) {
    const RunResult run = RunOf({{"5", "MCS0", "0.1"}, {"5", "MCS0", "0.1"}, {"5", "MCS0", "0.1"}});
    EXPECT_EQ(Compare(run, run, Decimal()).noise, 0.0);
}

TEST_F(DifferencesTest, FewerThanThreeRepeatsTellNoNoise) {
    const RunResult run =
        RunOf({{"5", "MCS0", "10"}, {"5", "MCS0", "12"}, {"5", "MCS0", ""}, {"5", "MCS1", "10"}});
    const RunResult other = RunOf({{"5", "MCS0", "10"}, {"5", "MCS0", "12"}});
    EXPECT_EQ(Compare(run, other, "0.5"_dB).noise, std::nullopt);
    EXPECT_TRUE(Compare(run, run, "0.5"_dB).noise == std::nullopt) << "one repeat in each";
    const RunResult repeated = RunOf({{"5", "MCS0", "1"}, {"5", "MCS0", "1"}, {"5", "MCS0", "1"}});
    EXPECT_EQ(Compare(repeated, other, "0.5"_dB).noise.has_value(), true);
}

TEST_F(DifferencesTest, RunsThatAreAlikeDifferInNothing) {
    const RunResult run = RunOf({{"5", "MCS0", "10"}, {"5", "MCS1", ""}, {"6", "MCS0", "-3"}});
    const Differences found = Compare(run, run, Decimal());
    EXPECT_TRUE(found.all.empty());
    EXPECT_EQ(found.pairs, 3U);
    const Differences none = Compare(RunResult(), RunResult(), Decimal());
    EXPECT_TRUE(none.all.empty());
    EXPECT_TRUE(none.shifts.empty());
    EXPECT_EQ(none.noise, std::nullopt);
}

class DifferencesByPlaceTest : public DifferencesTest {
protected:
    /// One line for each shift by the bench.
    std::string Shifts() const {
        std::string text;
        for (const PlaceShift& shift :
             ShiftsBy(PlacePart::Bench, oldRun, newRun, Compare(oldRun, newRun, "0.5"_dB)))
            text += shift.name.value_or("?") + " " + std::to_string(shift.pairs) + " " +
                    std::to_string(shift.mean) + "\n";
        return text;
    }

    static Source Of(LineNumber line, const char* bench) {
        return {{line, line}, {bench, std::nullopt, std::nullopt}};
    }

    /// The same lines in another order, and one without a power in each run.
    RunResult oldRun = RunOf(
        {{"5", "0", "10"}, {"6", "0", "10"}, {"6", "1", "10"}, {"7", "1", ""}, {"8", "1", "1"}});
    RunResult newRun = RunOf(
        {{"6", "1", "12"}, {"6", "0", "11"}, {"5", "0", "10.5"}, {"7", "1", "9"}, {"8", "1", ""}});
};

TEST_F(DifferencesByPlaceTest, ShiftsAreByThePlaceOfTheNewRun) {
    newRun.sources = Sources({Of(2, "b"), Of(3, "b"), Of(4, "a"), Of(5, "c")});
    oldRun.sources = Sources({Of(2, "x")});
    EXPECT_EQ(Shifts(), "a 1 0.500000\nb 2 1.500000\n");
}

TEST_F(DifferencesByPlaceTest, ShiftsAreByThatOfTheOldRunWhereTheNewOneTellsNone) {
    oldRun.sources = Sources({Of(2, "b"), Of(3, "a"), Of(5, "c")});
    EXPECT_EQ(Shifts(), "? 1 2.000000\na 1 1.000000\nb 1 0.500000\n");
    newRun.sources = Sources({{{2, 5}, {std::nullopt, "DUT", std::nullopt}}});
    EXPECT_EQ(Shifts(), "? 1 2.000000\na 1 1.000000\nb 1 0.500000\n")
        << "the new one tells no bench";
}

} // namespace
} // namespace Bench
