#include "tests/Tools/SarvexTool/Bench/Commands/CommandFixture.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using testing::AllOf;
using testing::HasSubstr;
using testing::StartsWith;

class ReportTest : public CommandFixture {};

TEST_F(ReportTest, APageIsWrittenWhateverTheVerdict) {
    const std::string result = ResultOf("result.csv", "9");
    const std::string limits = directory.Create("limits.csv", "Chain,Min,Max\n*,10,20\n");
    const std::string page = directory.Path("page.html");
    EXPECT_EQ(Run({"report", result, "--limits", limits, "-o", page}), 0);
    EXPECT_EQ(out.str() + err.str(), "");
    EXPECT_THAT(ReadBytes("page.html"),
                AllOf(StartsWith("<!DOCTYPE html>\n"),
                      HasSubstr("1 of 1 measurement did not pass: 1 too low."),
                      HasSubstr("<dt>Limits</dt><dd>"), HasSubstr("</html>\n")));
}

TEST_F(ReportTest, APageGoesToStandardOutputForAMinus) {
    EXPECT_EQ(Run({"report", ResultOf("result.csv", "9"), "-o", "-"}), 0);
    EXPECT_THAT(out.str(), StartsWith("<!DOCTYPE html>\n"));
    EXPECT_EQ(err.str(), "");
}

TEST_F(ReportTest, AResultMayComeFromStandardInput) {
    EXPECT_EQ(Run({"report", "-", "-o", "-"}, Header() + "5,A,12,NA\n"), 0);
    EXPECT_THAT(out.str(), AllOf(HasSubstr("<h1>standard input</h1>"),
                                 HasSubstr("<dt>Result written</dt><dd>not known</dd>"),
                                 HasSubstr("<dt>Country code</dt><dd>not known: ")));
}

TEST_F(ReportTest, TheTreeBesideTheResultGivesTheCountryCode) {
    const std::string result = ResultOf("result.csv", "9");
    directory.Create("result.xml", "<?xml version=\"1.0\" ?>\n<PowerTable MCC=\"US\"/>\n");
    EXPECT_EQ(Run({"report", directory.Path(), "-o", "-"}), 0);
    EXPECT_THAT(out.str(), HasSubstr("<dt>Country code</dt><dd>US</dd>"));
    directory.Create("result.xml", "<PowerTable");
    EXPECT_EQ(Run({"report", directory.Path(), "-o", "-"}), 0);
    EXPECT_THAT(out.str(), HasSubstr("<dt>Country code</dt><dd>not known: "));
}

TEST_F(ReportTest, RunDirectoryTellsReasonsAndAnEarlyEnd) {
    CreateEarlyRun();
    EXPECT_EQ(Run({"report", directory.Path(), "-o", "-"}), 0);
    EXPECT_THAT(out.str(),
                AllOf(HasSubstr("<dt>Lines run</dt><dd>1 of 2: the run is not complete</dd>"),
                      HasSubstr("<span>The run is not complete: 1 of 2 lines were run. No limits"),
                      HasSubstr("\"the daemon refused the line: \\u003cNo>\"")));
}

TEST_F(ReportTest, TheHeadTellsWhereTheRunsHaveMeasured) {
    CreateEarlyRun();
    directory.Create("run.json", R"({"bench":"<1>","device":"DUT-42","attempt":2})");
    EXPECT_EQ(Run({"report", directory.Path(), "--baseline", directory.Path(), "-o", "-"}), 0);
    EXPECT_THAT(out.str(), AllOf(HasSubstr("<dt>Bench</dt><dd>&lt;1&gt;</dd>"),
                                 HasSubstr("<dt>Device</dt><dd>DUT-42</dd>"),
                                 HasSubstr("<dt>Attempt</dt><dd>2</dd>"),
                                 HasSubstr("<dt>Baseline&#39;s bench</dt><dd>&lt;1&gt;</dd>"),
                                 HasSubstr("<dt>Baseline&#39;s device</dt><dd>DUT-42</dd>"),
                                 HasSubstr("<dt>Baseline&#39;s attempt</dt><dd>2</dd>")));
    EXPECT_EQ(Run({"report", ResultOf("other.csv", "9"), "-o", "-"}), 0);
    EXPECT_THAT(out.str(), testing::Not(HasSubstr("<dt>Attempt</dt>")));
}

TEST_F(ReportTest, ABaselineIsHeldAgainstTheRun) {
    const std::string result = ResultOf("result.csv", "9");
    const std::string old = ResultOf("old.csv", "10");
    EXPECT_EQ(Run({"report", result, "--baseline", old, "-o", "-"}), 0);
    EXPECT_THAT(out.str(), AllOf(HasSubstr("<strong>Different</strong>"),
                                 HasSubstr("<dt>Baseline</dt><dd>"), HasSubstr("\"-1\",0]]")));
}

TEST_F(ReportTest, TheOutputIsNeverAnInput) {
    const std::string result = ResultOf("result.csv", "9");
    const std::string before = ReadBytes("result.csv");
    EXPECT_EQ(Run({"report", result, "-o", result}), 2);
    EXPECT_EQ(Run({"report", result, "-o", directory.Path("result.xml")}), 2);
    EXPECT_EQ(Run({"report", result, "--baseline", "-", "--limits", "-", "-o", "-"}), 2);
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(ReadBytes("result.csv"), before);
}

TEST_F(ReportTest, BadInputWritesNoPage) {
    const std::string result = directory.Create("result.csv", "Band,Chains\n5,A\n");
    EXPECT_EQ(Run({"report", result, "-o", directory.Path("page.html")}), 2);
    EXPECT_NE(err.str(), "");
    EXPECT_EQ(ReadBytes("page.html"), "");
}

TEST_F(ReportTest, AnOutputIsNeeded) {
    EXPECT_EQ(Run({"report", ResultOf("result.csv", "9")}), 2);
    EXPECT_THAT(err.str(), StartsWith("SarvexToolBench report: --output is required"));
}

TEST_F(ReportTest, ThePageIsByWhatIsAskedForOrTold) {
    CreatePlacedRun("seven", "11");
    directory.Create("run.json", R"({"linesTotal":1,"bench":"seven","attempt":2})");
    EXPECT_EQ(Run({"report", directory.Path(), "-o", "-"}), 0);
    EXPECT_THAT(out.str(), HasSubstr("\"groupBy\":\"bench\""));
    EXPECT_EQ(Run({"report", directory.Path(), "-o", "-", "--group-by", "attempt"}), 0);
    EXPECT_THAT(out.str(), HasSubstr("\"groupBy\":\"attempt\""));
    EXPECT_EQ(Run({"report", directory.Path(), "-o", "-", "--group-by", "device"}), 2);
    EXPECT_THAT(err.str(), HasSubstr("--group-by device needs a run that tells its device"));
    EXPECT_EQ(Run({"report", ResultOf("a.csv", "9"), "-o", "-"}), 0);
    EXPECT_THAT(out.str(), HasSubstr("\"groupBy\":null"));
}

} // namespace
} // namespace Bench
