#include "tests/Tools/SarvexTool/Bench/Commands/CommandFixture.h"

namespace Bench {
namespace {

class JudgeTest : public CommandFixture {
protected:
    std::string limits = directory.Create("limits.csv", "Band,Chain,Min,Max\n5,*,10,12\n");
};

TEST_F(JudgeTest, ExitCodeSaysWhetherAllPassed) {
    EXPECT_EQ(Run({"judge", ResultOf("a.csv", "11"), "--limits", limits}), 0);
    EXPECT_NE(out.str().find("PASS: 1 measurement\n"), std::string::npos) << out.str();
    EXPECT_EQ(Run({"judge", ResultOf("a.csv", "9.75"), "--limits", limits}), 1);
    EXPECT_NE(out.str().find("line 2 chain A: too low by 0.25 dB: 9.75 dBm, limits 10 to 12 dBm "
                             "(Band 5, Chains A)\n\nFAIL: 1 of 1 measurement did not pass\n"),
              std::string::npos)
        << out.str();
    EXPECT_EQ(Run({"judge", ResultOf("a.csv", "NA"), "--limits", limits}), 1);
    EXPECT_EQ(err.str(), "");
}

TEST_F(JudgeTest, OutputsAreWritten) {
    const std::string result = ResultOf("result.csv", "13");
    EXPECT_EQ(
        Run({"judge", directory.Path(), "--limits", limits, "--json", directory.Path("j.json"),
             "--junit", directory.Path("j.xml"), "--csv", directory.Path("j.csv")}),
        1);
    EXPECT_EQ(ReadBytes("j.json").substr(0, 36), "{\"form\": \"judgement\", \"version\": 1,\n");
    EXPECT_EQ(ReadBytes("j.xml").substr(0, 57),
              "<?xml version=\"1.0\" encoding=\"UTF-8\"?>\n<testsuites name=\"");
    EXPECT_NE(ReadBytes("j.csv").find(",13,10,12,too high,-1,2,\n"), std::string::npos);
}

TEST_F(JudgeTest, StandardOutputIsThatOfTheOutputThatHasIt) {
    EXPECT_EQ(Run({"judge", ResultOf("a.csv", "11"), "--limits", limits, "--csv", "-"}), 0);
    EXPECT_EQ(out.str().substr(0, 10), "Line,Band,");
    EXPECT_NE(err.str().find("PASS: 1 measurement\n"), std::string::npos);
}

TEST_F(JudgeTest, StandardInputIsEitherFile) {
    const std::string result = ResultOf("a.csv", "11");
    EXPECT_EQ(Run({"judge", result, "--limits", "-"}, "Chain,Min,Max\n*,*,*\n"), 0);
    EXPECT_EQ(Run({"judge", "-", "--limits", limits}, ReadBytes("a.csv")), 0);
    EXPECT_EQ(out.str().substr(0, 3), "-: ");
    EXPECT_EQ(Run({"judge", "-", "--limits", "-"}, ReadBytes("a.csv")), 2);
}

TEST_F(JudgeTest, LimitThatFitsNothingIsWarnedOf) {
    const std::string other =
        directory.Create("other.csv", "Band,Chain,Min,Max\n7,*,1,2\n5,*,*,*\n5,A,1,2\n5,B,*,*\n");
    EXPECT_EQ(Run({"judge", ResultOf("a.csv", "11"), "--limits", other}), 0);
    EXPECT_EQ(err.str(), other +
                             ":2:0: warning: the line fits no measurement; look for a misspelt "
                             "value, or take it away\n" +
                             other +
                             ":5:0: warning: the line fits no measurement; look for a "
                             "misspelt value, or take it away\n");
}

TEST_F(JudgeTest, BadInputsAreToldWithTheirPlaces) {
    const std::string bad = ResultOf("a.csv", "1..2");
    EXPECT_EQ(Run({"judge", bad, "--limits", limits}), 2);
    EXPECT_EQ(err.str(), bad + ":2:3: error: \"1..2\" is no power: it is neither NA nor a decimal "
                               "number; run the line again\n");
    const std::string wrong = directory.Create("wrong.csv", "Chain,Min,Max\nC,2,1\n");
    EXPECT_EQ(Run({"judge", ResultOf("b.csv", "1"), "--limits", wrong}), 2);
    EXPECT_EQ(err.str(),
              wrong + ":2:0: error: Min is above Max, so that nothing can pass; swap them\n" +
                  wrong + ":2:1: error: \"C\" is no chain; write A, B, A|B or *\n");
    EXPECT_EQ(out.str(), "");
    EXPECT_EQ(Run({"judge", directory.Path("none.csv"), "--limits", limits}), 2);
    EXPECT_EQ(Run({"judge", bad}), 2) << "limits are needed";
}

TEST_F(JudgeTest, OutputIsNeverAnInput) {
    const std::string result = ResultOf("result.csv", "11");
    const std::string tree = directory.Create("result.xml", "<PowerTable MCC=\"US\"/>");
    const std::string before = ReadBytes("result.csv");
    for (const std::string& output : {result, tree, limits, directory.Path() + "/./limits.csv"})
        EXPECT_EQ(Run({"judge", directory.Path(), "--limits", limits, "--json", output}), 2)
            << output;
    EXPECT_EQ(Run({"judge", result, "--limits", limits, "--json", "-", "--csv", "-"}), 2);
    EXPECT_EQ(ReadBytes("result.csv"), before);
    EXPECT_EQ(ReadBytes("result.xml"), "<PowerTable MCC=\"US\"/>");
}

TEST_F(JudgeTest, NothingIsWrittenWhenOneOutputCannotBe) {
    EXPECT_EQ(Run({"judge", ResultOf("a.csv", "11"), "--limits", limits, "--json",
                   directory.Path("j.json"), "--csv", directory.Path("none/j.csv")}),
              2);
    EXPECT_EQ(ReadBytes("j.json"), "");
}

TEST_F(JudgeTest, NoOutputTakesItsPlaceWhenALaterOneCannotBeWrittenToItsEnd) {
    directory.Create("j.json", "old");
    out.setstate(std::ios::badbit);
    EXPECT_EQ(Run({"judge", ResultOf("a.csv", "11"), "--limits", limits, "--json",
                   directory.Path("j.json"), "--csv", "-"}),
              2);
    EXPECT_EQ(ReadBytes("j.json"), "old");
}

} // namespace
} // namespace Bench
