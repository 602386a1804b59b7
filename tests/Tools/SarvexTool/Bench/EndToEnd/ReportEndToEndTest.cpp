#include "tests/Tools/SarvexTool/Bench/EndToEnd/BenchProgram.h"

#include <gmock/gmock.h>

namespace Bench {
namespace {

using EndToEnd::ProcessResult;
using testing::AllOf;
using testing::EndsWith;
using testing::HasSubstr;
using testing::Not;
using testing::StartsWith;

class ReportEndToEndTest : public testing::Test {
protected:
    const std::string header = "Band,Chains,Channel,Rate,Chain-A Power, Chain B Power\n";
    const std::string run = header + "5,AB,36,MCS0,12.5,NA\n5,A,40,</script>,9,NA\n";

    BenchProgram program;
};

TEST_F(ReportEndToEndTest, APageIsTheSameBytesInAFileAndOnStandardOutput) {
    program.Write("Ω.csv", run);
    const ProcessResult result = program.Run({"report", "Ω.csv", "-o", "Ω 測試.html"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out + result.err, "");
    const std::string page = program.Read("Ω 測試.html");
    EXPECT_THAT(page, AllOf(StartsWith("<!DOCTYPE html>\n"), HasSubstr("<h1>Ω.csv</h1>"),
                            Not(HasSubstr("\r")), EndsWith("</html>\n")));
    EXPECT_EQ(program.Run({"report", "Ω.csv", "-o", "-"}).out, page);
    EXPECT_EQ(program.CountFiles(), 2);
}

TEST_F(ReportEndToEndTest, LimitsABaselineAndTheTreeAreOnThePage) {
    program.Write("result.csv", run);
    program.Write("result.xml", "<?xml version=\"1.0\" ?>\n<PowerTable MCC=\"DE\"/>\n");
    program.Write("limits.csv", "Chain,Min,Max\n*,10,20\n");
    program.Write("old.csv", header + "5,AB,36,MCS0,11,12\n");
    const ProcessResult result = program.Run(
        {"report", ".", "--limits", "limits.csv", "--baseline", "old.csv", "-o", "page.html"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out + result.err, "");
    EXPECT_THAT(program.Read("page.html"),
                AllOf(HasSubstr("2 of 3 measurements did not pass: 1 too low, 1 not measured."),
                      HasSubstr("<dt>Country code</dt><dd>DE</dd>"),
                      HasSubstr("<dt>Baseline</dt><dd>old.csv</dd>"),
                      HasSubstr("[0,0,\"12.5\",-1,0,0,\"2.5\",2,\"11\",\"1.5\"]"),
                      HasSubstr("\"\\u003c/script>\"")));
}

TEST_F(ReportEndToEndTest, BadInputLeavesAnOldPageAsItIs) {
    program.Write("result.csv", header + "5,AB,36,MCS0,x,NA\n");
    program.Write("page.html", "old");
    const ProcessResult result = program.Run({"report", "result.csv", "-o", "page.html"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.err, StartsWith("result.csv:2:5: error: "));
    EXPECT_EQ(program.Read("page.html"), "old");
    EXPECT_EQ(program.CountFiles(), 2);
}

TEST_F(ReportEndToEndTest, APageThatCannotBeWrittenEndsWithTwo) {
    program.Write("result.csv", run);
    const ProcessResult result = program.Run({"report", "result.csv", "-o", "none/page.html"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_THAT(result.err, StartsWith("none/page.html: error: cannot be written ("));
}

} // namespace
} // namespace Bench
