#include "tests/Tools/SarvexTool/Bench/Commands/CommandFixture.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using CompareTest = CommandFixture;

TEST_F(CompareTest, ExitCodeSaysWhetherTheRunsAreAlike) {
    const std::string older = ResultOf("old.csv", "10.1");
    const std::string newer = ResultOf("new.csv", "10.4");
    EXPECT_EQ(Run({"compare", older, newer}), 0);
    EXPECT_EQ(Run({"compare", older, newer, "--tolerance", "0.3"}), 0);
    EXPECT_EQ(Run({"compare", older, newer, "--tolerance", "0.299999999"}), 1);
    EXPECT_EQ(err.str(), "");
    EXPECT_NE(out.str().find("line 2 chain A: changed by +0.3 dB: 10.1 dBm to 10.4 dBm (Band 5, "
                             "Chains A)\n\nDIFFERENT: 1 difference, 1 measurement is in both "
                             "runs; tolerance 0.299999999 dB\n"),
              std::string::npos)
        << out.str();
}

TEST_F(CompareTest, ToleranceIsADecimalOfZeroOrMore) {
    const std::string result = ResultOf("old.csv", "10");
    const std::string newer = ResultOf("new.csv", "10");
    EXPECT_EQ(Run({"compare", result, newer, "--tolerance", "0"}), 0);
    for (const char* wrong : {"-1", "0,5", "x", "", "1e3", "1234567890"})
        EXPECT_EQ(Run({"compare", result, newer, "--tolerance", wrong}), 2) << wrong;
}

TEST_F(CompareTest, RunsWithoutAnyPowerAreNotAlike) {
    const std::string older = ResultOf("old.csv", "NA");
    const std::string newer = ResultOf("new.csv", "NA");
    EXPECT_EQ(Run({"compare", older, newer}), 2);
    EXPECT_EQ(err.str(), newer + ": error: neither run has a power, so that there is nothing to "
                                 "compare; see why the daemon reported none\n");
    EXPECT_EQ(Run({"compare", older, ResultOf("new.csv", "1")}), 1);
}

TEST_F(CompareTest, MeasuredInNeitherRunIsNoChange) {
    const std::string lines = "5,A,1,NA\n6,A,NA,NA\n";
    EXPECT_EQ(Run({"compare", directory.Create("old.csv", Header() + lines),
                   directory.Create("new.csv", Header() + lines)}),
              0);
}

TEST_F(CompareTest, ThePageHoldsTheNewRunAgainstTheOldOne) {
    const std::string older = ResultOf("old.csv", "10");
    const std::string newer = ResultOf("new.csv", "10.4");
    EXPECT_EQ(Run({"compare", older, newer, "--html", directory.Path("c.html")}), 0);
    const std::string alike = ReadBytes("c.html");
    EXPECT_NE(alike.find("<strong>Alike</strong> <span>1 measurement is in both runs, and none "
                         "differs by more than 0.5 dB.</span>"),
              std::string::npos);
    EXPECT_NE(alike.find("<dt>Baseline</dt><dd>"), std::string::npos);
    EXPECT_EQ(Run({"compare", older, newer, "--tolerance", "0.2", "--html", "-"}), 1);
    EXPECT_EQ(out.str().substr(0, 15), "<!DOCTYPE html>");
    EXPECT_NE(out.str().find("[0,0,2,\"10\",\"0.4\",0]"), std::string::npos);
    EXPECT_NE(err.str().find("DIFFERENT: 1 difference"), std::string::npos);
}

TEST_F(CompareTest, RunDirectoryTellsReasonsAndAnEarlyEnd) {
    CreateEarlyRun();
    const std::string newer = ResultOf("new.csv", "10");
    EXPECT_EQ(Run({"compare", directory.Path(), newer, "--html", directory.Path("c.html")}), 1);
    EXPECT_NE(out.str().find("\n  the run is not complete: 1 of 2 lines were run\n"),
              std::string::npos)
        << out.str();
    EXPECT_NE(
        out.str().find("line 2 chain A: measured in the new run only: 10 dBm, before that not "
                       "measured: the daemon refused the line: <No> (Band 5, Chains A)\n"),
        std::string::npos)
        << out.str();
    EXPECT_NE(ReadBytes("c.html").find(
                  "<dt>Baseline&#39;s lines run</dt><dd>1 of 2: the run is not complete</dd>"),
              std::string::npos);
}

TEST_F(CompareTest, RunsThatEndedEarlyAreNotAlike) {
    CreateEarlyRun("10", R"({"outcome":"measured"})");
    EXPECT_EQ(Run({"compare", directory.Path(), directory.Path("result.csv"), "--html",
                   directory.Path("c.html"), "--json", directory.Path("c.json"), "--junit",
                   directory.Path("c.xml")}),
              1);
    EXPECT_NE(out.str().find("NOT COMPLETE: no difference, 1 measurement is in both runs; "
                             "tolerance 0.5 dB; not all lines were run\n"),
              std::string::npos)
        << out.str() << err.str();
    EXPECT_NE(ReadBytes("c.html").find("<strong>Not complete</strong>"), std::string::npos);
    EXPECT_NE(ReadBytes("c.json").find("\"alike\": false"), std::string::npos);
    EXPECT_NE(ReadBytes("c.xml").find("<failure type=\"ended early\""), std::string::npos);
}

TEST_F(CompareTest, OutputsAreWritten) {
    const std::string older = ResultOf("old.csv", "10");
    EXPECT_EQ(Run({"compare", older, "-", "--json", directory.Path("c.json"), "--junit", "-"},
                  Header() + "5,A,12,NA\n"),
              1);
    EXPECT_EQ(ReadBytes("c.json").substr(0, 37), "{\"form\": \"comparison\", \"version\": 1,\n");
    EXPECT_EQ(out.str(), R"xml(<?xml version="1.0" encoding="UTF-8"?>
<testsuites name="compare" tests="1" failures="1" errors="0">
  <testsuite name="Band 5, Bandwidth unknown" tests="1" failures="1" errors="0" skipped="0">
    <testcase name="Chains A, chain A" classname="Band 5, Bandwidth unknown">
      <failure type="changed" message="changed by +2 dB: 10 dBm to 12 dBm (old line 2, new line 2)"/>
    </testcase>
  </testsuite>
</testsuites>
)xml");
}

TEST_F(CompareTest, OutputIsNeverAnInput) {
    const std::string older = ResultOf("old.csv", "10");
    const std::string newer = ResultOf("new.csv", "12");
    const std::string before = ReadBytes("new.csv");
    EXPECT_EQ(Run({"compare", older, newer, "--json", newer}), 2);
    EXPECT_EQ(Run({"compare", older, newer, "--json", directory.Path("x"), "--junit",
                   directory.Path("x")}),
              2);
    EXPECT_EQ(ReadBytes("new.csv"), before);
}

TEST_F(CompareTest, ShiftsAreByTheBenchOfEitherRun) {
    CreatePlacedRun("seven", "11");
    const std::string other = ResultOf("other.csv", "12");
    EXPECT_EQ(Run({"compare", other, directory.Path(), "--group-by", "bench"}), 1);
    EXPECT_THAT(out.str(), testing::HasSubstr("\nseven      1       -1 dB\n"));
    EXPECT_EQ(Run({"compare", directory.Path(), other, "--group-by", "bench"}), 1);
    EXPECT_THAT(out.str(), testing::HasSubstr("\nseven      1       +1 dB\n"));
    EXPECT_EQ(Run({"compare", other, other, "--group-by", "bench"}), 2);
    EXPECT_THAT(err.str(), testing::HasSubstr("--group-by bench needs a run that tells its bench"));
}

TEST_F(CompareTest, ThePageIsByTheBenchOfTheNewRun) {
    CreatePlacedRun("seven", "11");
    const std::string other = ResultOf("other.csv", "12");
    EXPECT_EQ(Run({"compare", other, directory.Path(), "--html", "-"}), 1);
    EXPECT_THAT(out.str(), testing::HasSubstr("\"groupBy\":\"bench\""));
    EXPECT_EQ(Run({"compare", directory.Path(), other, "--group-by", "bench", "--html", "-"}), 1);
    EXPECT_THAT(out.str(), testing::HasSubstr("\"groupBy\":null"));
}

} // namespace
} // namespace Bench
