#include "Tools/SarvexTool/Bench/Output/ProgressText.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

using Kind = RunState::Kind;

TEST(ProgressTextTest, ATimeIsShownAsAClockDoes) {
    EXPECT_EQ(ClockText(0), "0:00");
    EXPECT_EQ(ClockText(-1), "0:00");
    EXPECT_EQ(ClockText(9.4), "0:09");
    EXPECT_EQ(ClockText(59.6), "1:00");
    EXPECT_EQ(ClockText(754), "12:34");
    EXPECT_EQ(ClockText(3599), "59:59");
    EXPECT_EQ(ClockText(3600), "1:00:00");
    EXPECT_EQ(ClockText(360061), "100:01:01");
}

TEST(ProgressTextTest, ARunThatHasJustBegunShowsItsCounts) {
    RunProgress progress;
    progress.linesTotal = 400;
    EXPECT_EQ(ProgressText(progress), "0/400 (0 %), 0:00");
    progress.linesTotal = 0;
    EXPECT_EQ(ProgressText(progress), "0/0 (100 %), 0:00");
}

RunProgress MakeProgress() {
    RunProgress progress;
    progress.linesDone = 37;
    progress.linesTotal = 400;
    progress.elapsedSeconds = 37;
    progress.remainingSeconds = 363;
    progress.line = 39;
    progress.settings = "Band 5, Channel 42";
    progress.last.line = 38;
    progress.last.a.power = Decimal::Parse("12.86");
    progress.last.b.power = Decimal::Parse("-1");
    return progress;
}

TEST(ProgressTextTest, WhatMattersMostComesFirst) {
    RunProgress progress = MakeProgress();
    EXPECT_EQ(ProgressText(progress), "37/400 (9 %), 0:37, about 6:03 left; line 38: A 12.86 dBm, "
                                      "B -1 dBm; line 39: Band 5, Channel 42");
    progress.outcomes.Add({{Outcome::Refused, ""}, {Outcome::Refused, ""}, false}, {true, true});
    progress.verdicts = VerdictTotals{35, 1, 0, 2, 0};
    EXPECT_EQ(ProgressText(progress),
              "37/400 (9 %), 0:37, about 6:03 left, 2 not measured, 35 pass, 1 too low; "
              "line 38: A 12.86 dBm, B -1 dBm; line 39: Band 5, Channel 42");
}

TEST(ProgressTextTest, PowersThatAreMissingAreLeftOut) {
    RunProgress progress = MakeProgress();
    progress.line = 0;
    progress.last.a.power.reset();
    EXPECT_EQ(ProgressText(progress), "37/400 (9 %), 0:37, about 6:03 left; line 38: B -1 dBm");
    progress.last.b.power.reset();
    EXPECT_EQ(ProgressText(progress), "37/400 (9 %), 0:37, about 6:03 left; line 38: no power");
    progress.line = 39;
    progress.settings = "";
    progress.last.line = 0;
    EXPECT_EQ(ProgressText(progress), "37/400 (9 %), 0:37, about 6:03 left; line 39");
}

TEST(ProgressTextTest, AnotherStateTakesThePlaceOfTheTimeLeft) {
    RunProgress progress = MakeProgress();
    progress.last.line = progress.line = 0;
    progress.state = {Kind::WaitingForDaemon, 12, ""};
    EXPECT_EQ(ProgressText(progress), "37/400 (9 %), 0:37, waiting for the daemon (0:12)");
    progress.state = {Kind::Repeating, 1, "no answer within 60 s"};
    EXPECT_EQ(ProgressText(progress),
              "37/400 (9 %), 0:37, repeating (0:01): no answer within 60 s");
    progress.state = {Kind::Stopping, 0, ""};
    EXPECT_EQ(ProgressText(progress), "37/400 (9 %), 0:37, stopping the transmission (0:00)");
}

TEST(ProgressTextTest, TextsOfFilesAndDaemonsAreMadeHarmless) {
    RunProgress progress = MakeProgress();
    progress.settings = "Band \x1B[2J";
    progress.state = {Kind::Repeating, 0, "\r\xFF"};
    const std::string text = ProgressText(progress);
    EXPECT_NE(text.find("repeating (0:00): \\r\\xFF"), std::string::npos) << text;
    EXPECT_TRUE(text.ends_with("line 39: Band \\x1B[2J")) << text;
}

TEST(ProgressTextTest, PassesAndOtherVerdictsThatOccurAreTold) {
    EXPECT_EQ(VerdictsText({}), "0 pass");
    EXPECT_EQ(VerdictsText({1, 2, 3, 4, 5}), "1 pass, 2 too low, 3 too high, 5 no limit");
}

} // namespace
} // namespace Bench
