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

    void AddJournalled(LineNumber line, CoreFixture::Cells cells, const char* powerA,
                       const char* powerB, const JournalledLine& journalled) {
        Row row = fixture.RowOf(line, cells, powerA, powerB);
        row.journalled = journalled;
        builder.Add(row);
    }

    CoreFixture fixture;
    RunResultBuilder builder;
    const JournalledChain measured{};
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

TEST_F(MeasurementsTest, CauseHasAName) {
    Add(2, {{Setting::Chains, "A"}}, "", "");
    Add(3, {}, "1", "");
    const RunResult run = builder.Take();
    EXPECT_STREQ(run.measurements[0].reason.CauseName(), "no power");
    EXPECT_STREQ(run.measurements[1].reason.CauseName(), "uncertain");
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

TEST_F(MeasurementsTest, ReasonIsWhatTheJournalTells) {
    const std::pair<JournalledChain, const char*> cases[] = {
        {{Outcome::Refused, fixture.Text("Band 7 is none.")},
         "the daemon refused the line: Band 7 is none."},
        {{Outcome::Refused, nullptr}, "the daemon refused the line"},
        {{Outcome::Uncalibrated, fixture.Text("")}, "the transmission was not calibrated"},
        {{Outcome::ChainNotActive, nullptr}, "the chain was not active"},
        {{Outcome::TimedOut, nullptr}, "no whole answer came in time"},
        {{Outcome::ConnectionLost, nullptr}, "the connection to the daemon was lost"},
        {{Outcome::OtherConfiguration, fixture.Text("Channel 36")},
         "the power is one of another configuration: Channel 36"},
        {{Outcome::NotRun, nullptr}, "the line was not run"},
        {{Outcome::Measured, nullptr}, "no power was reported"},
    };
    for (const auto& [chain, reason] : cases) {
        SCOPED_TRACE(reason);
        AddJournalled(2, {{Setting::Chains, "AB"}}, "1", "", {measured, chain, true});
        const RunResult run = builder.Take();
        EXPECT_EQ(Describe(run), std::string("2 A 1\n2 B ") + reason + "\n");
        const bool isTold = chain.outcome != Outcome::Measured;
        EXPECT_STREQ(run.measurements[1].reason.CauseName(),
                     isTold ? NameOf(chain.outcome) : "no power");
    }
}

TEST_F(MeasurementsTest, PowerOfAnotherConfigurationIsNotMeasured) {
    AddJournalled(2, {{Setting::Chains, "A"}}, "12", "",
                  {{Outcome::OtherConfiguration, nullptr}, measured, true});
    AddJournalled(3, {{Setting::Chains, "A+B"}}, "13", "",
                  {{Outcome::OtherConfiguration, nullptr}, measured, true});
    EXPECT_EQ(Describe(builder.Take()), "2 A the power is one of another configuration\n"
                                        "3 A the power is one of another configuration\n");
}

TEST_F(MeasurementsTest, JournalTellsWhetherALineWasAccepted) {
    const JournalledChain uncalibrated{Outcome::Uncalibrated, nullptr};
    AddJournalled(2, {{Setting::Chains, "A"}, {Setting::Band, "5"}}, "", "",
                  {uncalibrated, measured, true});
    AddJournalled(3, {{Setting::Rate, "1"}}, "12", "", {measured, measured, false});
    AddJournalled(4, {{Setting::Channel, "36"}}, "13", "", {measured, measured, true});
    AddJournalled(5, {}, "", "", {{Outcome::TimedOut, nullptr}, measured, true});
    EXPECT_EQ(Describe(builder.Take()), "2 A the transmission was not calibrated\n"
                                        "3 A 12\n"
                                        "4 A Rate is uncertain since line 3\n"
                                        "5 A no whole answer came in time\n");
}

TEST_F(MeasurementsTest, ChainThatIsNotJustInactiveSaysWhyNothingIsThere) {
    const JournalledChain inactive{Outcome::ChainNotActive, nullptr};
    const JournalledChain lost{Outcome::ConnectionLost, nullptr};
    AddJournalled(2, {}, "", "", {lost, inactive, true});
    AddJournalled(3, {}, "", "", {inactive, lost, true});
    AddJournalled(4, {}, "", "", {inactive, inactive, true});
    EXPECT_EQ(Describe(builder.Take()), "2 ? the connection to the daemon was lost\n"
                                        "3 ? the connection to the daemon was lost\n"
                                        "4 ? the chain was not active\n");
}

TEST_F(MeasurementsTest, RefusedLineMakesNothingUncertainInALineThatWasSentWhole) {
    const JournalledChain refused{Outcome::Refused, nullptr};
    AddJournalled(2, {{Setting::Chains, "A"}, {Setting::Band, "7"}}, "", "",
                  {refused, measured, false, true});
    AddJournalled(3, {{Setting::Rate, "1"}}, "12", "", {measured, measured, true, true});
    EXPECT_EQ(Describe(builder.Take()), "2 A the daemon refused the line\n3 A 12\n");
}

TEST_F(MeasurementsTest, PlaceIsThatOfTheLine) {
    Add(2, {{Setting::Chains, "A"}}, "1", "");
    Add(3, {{Setting::Chains, "A"}}, "2", "");
    RunResult run = builder.Take();
    EXPECT_EQ(run.PlaceOf(run.measurements[1]), nullptr);
    run.sources = Sources({{{3, 3}, {"bench-1", std::nullopt, 2}}});
    EXPECT_EQ(run.PlaceOf(run.measurements[0]), nullptr);
    ASSERT_NE(run.PlaceOf(run.measurements[1]), nullptr);
    EXPECT_EQ(*run.PlaceOf(run.measurements[1]), (RunPlace{"bench-1", std::nullopt, 2}));
}

TEST(EarlyEndTest, IsToldInWords) {
    EXPECT_EQ((EarlyEnd{5, 12}.ToText()), "the run is not complete: 5 of 12 lines were run");
    EXPECT_EQ((EarlyEnd{0, 1}.ToText()), "the run is not complete: 0 of 1 line was run");
    EXPECT_EQ((EarlyEnd{1, std::nullopt}.ToText()), "the run is not complete: 1 line was run");
    EXPECT_EQ((EarlyEnd{0, std::nullopt}.ToText()), "the run is not complete: 0 lines were run");
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
