#include "Tools/SarvexTool/Bench/Output/Text.h"
#include "tests/Tools/SarvexTool/Bench/Output/OutputFixture.h"

#include <gtest/gtest.h>

#include <sstream>

namespace Bench {
namespace {

TEST(TextTest, JudgementsAreSummedUpAndListed) {
    const OutputFixture fixture;
    std::ostringstream stream;
    PrintJudgements({stream}, fixture.Judged());
    EXPECT_EQ(stream.str(),
              R"(run/result.csv: 6 configurations, 8 measurements; country code US
  besides, 1 power of chains that are not expected, which do not count

Band  pass  too low  too high  not measured  no limit  worst margin  at line
2.4      0        0         1             0         0       -0.5 dB      3 A
5        3        1         0             0         0      -0.25 dB      2 B
6        0        0         0             2         0             -        -
7        0        0         0             0         1             -        -
all      3        1         1             2         1       -0.5 dB      3 A

line 4 chain A: not measured: no power was reported (Band 6, Chains A, Bandwidth 20, Channel 500, Rate MCS9)
line 5 chain A: not measured: Band is uncertain since line 4 (Band 6, Chains A, Bandwidth 20, Channel 1, Rate MCS9)
line 3 chain A: too high by 0.5 dB: 15 dBm, limits at most 14.5 dBm (Band 2.4, Chains A, Bandwidth 20, Channel 6, Rate MCS9)
line 2 chain B: too low by 0.25 dB: 11.75 dBm, limits 12 to 14 dBm (Band 5, Chains AB, Bandwidth 80, Channel 36, Rate MCS9)
line 6 chain B: no limit fits: 1 dBm (Band 7, Chains B, Bandwidth 20, Channel 1, Rate MCS9)

FAIL: 5 of 8 measurements did not pass
)");
}

TEST(TextTest, RunThatPassedSaysSo) {
    OutputFixture fixture;
    RunResultBuilder builder;
    builder.Add(fixture.fixture.RowOf(2, {{Setting::Chains, "A"}}, "12.5", ""));
    fixture.run = builder.Take();
    LimitTable table({{Limit()}, {}});
    fixture.judgements = Judge(fixture.run, table);
    fixture.device = {std::nullopt, "result.xml is not XML: \x1B"};
    std::ostringstream stream;
    PrintJudgements({stream}, fixture.Judged());
    EXPECT_EQ(
        stream.str(),
        R"(run/result.csv: 1 configuration, 1 measurement; country code unknown: result.xml is not XML: \x1B

Band     pass  too low  too high  not measured  no limit  worst margin  at line
unknown     1        0         0             0         0             -        -
all         1        0         0             0         0             -        -

PASS: 1 measurement
)");
}

TEST(TextTest, RunThatEndedEarlyHasNotPassed) {
    OutputFixture fixture;
    fixture.JudgeEarlyEnd();
    std::ostringstream stream;
    PrintJudgements({stream}, fixture.Judged());
    EXPECT_EQ(stream.str(),
              R"(run/result.csv: 1 configuration, 1 measurement; country code US
  the run is not complete: 1 of 5 lines were run

Band  pass  too low  too high  not measured  no limit  worst margin  at line
5        1        0         0             0         0          1 dB      2 A
all      1        0         0             0         0          1 dB      2 A

FAIL: the run is not complete: 1 of 5 lines were run
)");
}

TEST(TextTest, BothReasonsNotToPassAreTold) {
    OutputFixture fixture;
    fixture.run.earlyEnd = EarlyEnd{6, 7};
    fixture.judgements.hasEndedEarly = true;
    std::ostringstream stream;
    PrintJudgements({stream}, fixture.Judged());
    const std::string end =
        "\n\nFAIL: 5 of 8 measurements did not pass, and the run is not complete: 6 "
        "of 7 lines were run\n";
    EXPECT_EQ(stream.str().substr(stream.str().size() - end.size()), end);
}

TEST(TextTest, WordsOfTheDaemonAreHarmless) {
    OutputFixture fixture;
    fixture.JudgeRefusal("\x1B[2J\xFF no\n");
    std::ostringstream stream;
    PrintJudgements({stream}, fixture.Judged());
    EXPECT_NE(stream.str().find("line 2 chain A: not measured: the daemon refused the line: "
                                "\\x1B[2J\\xFF no\\n (Band 5, Chains A)\n"),
              std::string::npos)
        << stream.str();
}

TEST(TextTest, ComparedRunThatEndedEarlyIsTold) {
    OutputFixture fixture;
    fixture.oldRun.earlyEnd = EarlyEnd{3, std::nullopt};
    std::ostringstream stream;
    PrintDifferences({stream}, fixture.Compared());
    EXPECT_NE(
        stream.str().find("result.xml is missing\n  the run is not complete: 3 lines were run\n"),
        std::string::npos)
        << stream.str();
}

TEST(TextTest, DifferencesAreListedAfterTheShifts) {
    const OutputFixture fixture;
    std::ostringstream stream;
    PrintDifferences({stream}, fixture.Compared());
    EXPECT_EQ(
        stream.str(),
        R"(old.csv: 3 configurations, 4 measurements; country code unknown: result.xml is missing
run/result.csv: 6 configurations, 8 measurements; country code US
  besides, 1 power of chains that are not expected, which do not count

Band  Rate  pairs  mean shift
2.4   MCS9      1    +0.75 dB
5     MCS9      2   -0.375 dB

old line 2, new line 3 chain A: changed by +0.75 dB: 14.25 dBm to 15 dBm (Band 2.4, Chains A, Bandwidth 20, Channel 6, Rate MCS9)
old line 4, new line 2 chain B: changed by -0.75 dB: 12.5 dBm to 11.75 dBm (Band 5, Chains AB, Bandwidth 80, Channel 36, Rate MCS9)
old line 3, new line 4 chain A: measured in the old run only: 9 dBm, then not measured: no power was reported (Band 6, Chains A, Bandwidth 20, Channel 500, Rate MCS9)
new line 5 chain A: in the new run only: not measured: Band is uncertain since line 4 (Band 6, Chains A, Bandwidth 20, Channel 1, Rate MCS9)
new line 6 chain B: in the new run only: 1 dBm (Band 7, Chains B, Bandwidth 20, Channel 1, Rate MCS9)
new line 7 chain A: in the new run only: 13 dBm (Band 5, Chains AB, Bandwidth 80, Channel 36, Rate MCS9)
new line 7 chain B: in the new run only: 13 dBm (Band 5, Chains AB, Bandwidth 80, Channel 36, Rate MCS9)

DIFFERENT: 7 differences, 4 measurements are in both runs; tolerance 0.5 dB
)");
}

TEST(TextTest, ConclusionIsInColourOnATerminal) {
    const OutputFixture fixture;
    std::ostringstream stream;
    PrintJudgements({stream, true}, fixture.Judged());
    EXPECT_NE(stream.str().find("\x1B[1;31mFAIL\x1B[0m: 5 of 8"), std::string::npos);
    std::ostringstream compared;
    PrintDifferences({compared, true}, fixture.Compared());
    EXPECT_NE(compared.str().find("\x1B[1;31mDIFFERENT\x1B[0m: "), std::string::npos);
}

TEST(TextTest, CellsReachNoTerminal) {
    OutputFixture fixture;
    fixture.JudgeChannel("\x1B[31m\xFF\r\n");
    std::ostringstream stream;
    PrintJudgements({stream}, fixture.Judged());
    EXPECT_EQ(stream.str().find('\x1B'), std::string::npos);
    EXPECT_NE(stream.str().find(R"(Channel \x1B[31m\xFF\r\n))"), std::string::npos);
}

TEST(TextTest, JudgementsMayBeCountedByBench) {
    OutputFixture fixture;
    fixture.TellPlaces();
    JudgedRun judged = fixture.Judged();
    judged.groupBy = PlacePart::Bench;
    std::ostringstream stream;
    PrintJudgements({stream}, judged);
    EXPECT_NE(stream.str().find(
                  R"(
Bench    pass  too low  too high  not measured  no limit  worst margin  at line
unknown     2        0         0             2         1          1 dB      7 A
=b\x1B      1        1         0             0         0      -0.25 dB      2 B
a           0        0         1             0         0       -0.5 dB      3 A
all         3        1         1             2         1       -0.5 dB      3 A
)"),
              std::string::npos)
        << stream.str();
}

TEST(TextTest, ShiftsMayBeShownByAttempt) {
    OutputFixture fixture;
    fixture.TellPlaces();
    ComparedRuns compared = fixture.Compared();
    compared.groupBy = PlacePart::Attempt;
    std::ostringstream stream;
    PrintDifferences({stream}, compared);
    EXPECT_NE(stream.str().find(R"(
Attempt  pairs  mean shift
2            2   -0.375 dB
10           1    +0.75 dB

)"),
              std::string::npos)
        << stream.str();
}

} // namespace
} // namespace Bench
