#include "Tools/SarvexTool/Bench/Core/Measurements.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

class MeasurementsTest : public testing::Test {
protected:
    void Add(LineNumber line, CoreFixture::Cells cells, const char* powerA, const char* powerB) {
        builder.Add(fixture.RowOf(line, cells, powerA, powerB));
    }

    CoreFixture fixture;
    RunResultBuilder builder;
};

TEST_F(MeasurementsTest, EachExpectedChainIsOneMeasurement) {
    Add(2, {{Setting::Chains, "A"}}, "12.5", "");
    Add(3, {{Setting::Chains, "B"}}, "", "-1");
    Add(4, {{Setting::Chains, "AB"}}, "3", "");
    const RunResult run = builder.Take();
    EXPECT_EQ(Describe(run), "2 A 12.5\n"
                             "3 B -1\n"
                             "4 A 3\n"
                             "4 B no power was reported\n");
    EXPECT_EQ(run.unexpectedPowers, 0U);
    EXPECT_EQ(run.configurations.size(), 3U);
}

TEST_F(MeasurementsTest, PowerOfAChainThatIsNotExpectedIsCountedOnly) {
    Add(2, {{Setting::Chains, "A"}}, "12", "13");
    Add(3, {{Setting::Chains, "B"}}, "14", "");
    const RunResult run = builder.Take();
    EXPECT_EQ(Describe(run), "2 A 12\n3 B no power was reported\n");
    EXPECT_EQ(run.unexpectedPowers, 2U);
}

TEST_F(MeasurementsTest, WithoutKnownChainsWhatIsThereIsTaken) {
    Add(2, {}, "1", "2");
    Add(3, {}, "", "3");
    Add(4, {{Setting::Chains, "A+B"}}, "4", "");
    Add(5, {}, "", "");
    const RunResult run = builder.Take();
    EXPECT_EQ(Describe(run), "2 A 1\n2 B 2\n3 B 3\n4 A 4\n5 ? no power was reported\n");
    EXPECT_EQ(run.unexpectedPowers, 0U);
}

TEST_F(MeasurementsTest, PowerWithAnUncertainSettingIsNotMeasured) {
    Add(2, {{Setting::Chains, "AB"}, {Setting::Band, "5"}}, "10", "11");
    Add(3, {{Setting::Band, "6"}}, "", "");
    Add(4, {{Setting::Channel, "36"}}, "12", "13");
    Add(5, {{Setting::Band, "5"}}, "14", "15");
    EXPECT_EQ(Describe(builder.Take()), "2 A 10\n"
                                        "2 B 11\n"
                                        "3 A no power was reported\n"
                                        "3 B no power was reported\n"
                                        "4 A Band is uncertain since line 3\n"
                                        "4 B Band is uncertain since line 3\n"
                                        "5 A 14\n"
                                        "5 B 15\n");
}

TEST_F(MeasurementsTest, PowerOfAnUnexpectedChainDoesNotMakeALineAccepted) {
    Add(2, {{Setting::Chains, "A"}, {Setting::Band, "5"}}, "", "13");
    Add(3, {}, "12", "");
    EXPECT_EQ(Describe(builder.Take()),
              "2 A no power was reported\n3 A Band is uncertain since line 2\n");
}

TEST_F(MeasurementsTest, OnePowerOfTwoMakesALineAccepted) {
    Add(2, {{Setting::Chains, "AB"}, {Setting::Band, "5"}}, "", "13");
    Add(3, {}, "12", "");
    EXPECT_EQ(Describe(builder.Take()),
              "2 A no power was reported\n2 B 13\n3 A 12\n3 B no power was reported\n");
}

TEST_F(MeasurementsTest, UncertainChainsAreStillThoseThatAreExpected) {
    Add(2, {{Setting::Chains, "AB"}}, "", "");
    Add(3, {}, "1", "2");
    EXPECT_EQ(Describe(builder.Take()), "2 A no power was reported\n"
                                        "2 B no power was reported\n"
                                        "3 A Chains is uncertain since line 2\n"
                                        "3 B Chains is uncertain since line 2\n");
}

TEST_F(MeasurementsTest, MeasurementHasTheEffectiveSettingsOfItsLine) {
    Add(2, {{Setting::Band, "5"}, {Setting::Rate, "MCS0"}}, "1", "");
    Add(3, {{Setting::Rate, "MCS7"}}, "2", "");
    const RunResult run = builder.Take();
    EXPECT_EQ(run.SettingsOf(run.measurements[0]),
              fixture.Of({{Setting::Band, "5"}, {Setting::Rate, "MCS0"}}));
    EXPECT_EQ(run.SettingsOf(run.measurements[1]),
              fixture.Of({{Setting::Band, "5"}, {Setting::Rate, "MCS7"}}));
}

TEST_F(MeasurementsTest, TakenRunLeavesTheBuilderEmpty) {
    Add(2, {{Setting::Band, "5"}}, "1", "");
    builder.Take();
    Add(2, {}, "2", "");
    const RunResult run = builder.Take();
    ASSERT_EQ(run.measurements.size(), 1U);
    EXPECT_EQ(run.SettingsOf(run.measurements[0]), Settings());
}

} // namespace
} // namespace Bench
