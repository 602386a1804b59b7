#include "tests/Tools/SarvexTool/Bench/Commands/CommandFixture.h"

#include <gmock/gmock.h>

#include <filesystem>

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

/// A supervised run of two lines on chain A with the powers 11 and NA.
class JudgedRunTest : public JudgeTest {
protected:
    void SetUp() override {
        const std::string rows = Header() + "5,A,11,NA\n-,-,NA,NA\n";
        directory.Create("result.csv", rows);
        directory.Create("journal.jsonl",
                         EntryOf(2, R"({"outcome":"measured"})", rows.size() - 10) +
                             EntryOf(3, R"({"outcome":"refused","text":"No."})", rows.size()));
        directory.Create("run.json", R"({"linesTotal":2,"linesDone":2,"outcome":"complete"})");
    }

    static std::string EntryOf(int line, const std::string& chain, std::size_t csvEnd) {
        return R"({"line":)" + std::to_string(line) + R"(,"accepted":true,"a":)" + chain +
               R"(,"b":{"outcome":"chain not active"},"csvEnd":)" + std::to_string(csvEnd) +
               R"(,"started":"2026-11-22T07:30:00Z","seconds":1.25})"
               "\n";
    }

    int Judge(const std::vector<std::string>& more = {}) {
        std::vector<std::string> arguments{"judge", directory.Path(), "--limits", limits};
        arguments.insert(arguments.end(), more.begin(), more.end());
        return Run(arguments);
    }
};

TEST_F(JudgedRunTest, ReasonIsThatOfTheJournal) {
    EXPECT_EQ(Judge(), 1);
    EXPECT_NE(out.str().find("line 3 chain A: not measured: the daemon refused the line: No. (Band "
                             "5, Chains A)\n\nFAIL: 1 of 2 measurements did not pass\n"),
              std::string::npos)
        << out.str();
}

TEST_F(JudgedRunTest, RunThatEndedEarlyNeverPasses) {
    directory.Create("journal.jsonl",
                     EntryOf(2, R"({"outcome":"measured"})", Header().size() + 10));
    EXPECT_EQ(Judge(), 1);
    EXPECT_NE(out.str().find("\n\nFAIL: the run is not complete: 1 of 2 lines were run\n"),
              std::string::npos)
        << out.str();
    directory.Create("run.json", R"({"linesTotal":1,"linesDone":1,"outcome":"complete"})");
    EXPECT_EQ(Judge(), 0) << out.str();
}

TEST_F(JudgedRunTest, JournalAndFactsAreInputs) {
    for (const char* name : {"journal.jsonl", "run.json"}) {
        const std::string before = ReadBytes(name);
        EXPECT_EQ(Judge({"--json", directory.Path(name)}), 2);
        EXPECT_EQ(ReadBytes(name), before);
    }
}

TEST_F(JudgedRunTest, JournalThatCannotBeReadIsToldWithItsLine) {
    directory.Create("journal.jsonl",
                     EntryOf(2, R"({"outcome":"\u001b[2J"})", 1) + EntryOf(3, "{}", 2));
    EXPECT_EQ(Judge(), 2);
    EXPECT_EQ(err.str(),
              directory.Path("journal.jsonl") + ":1:0: error: there is no outcome \"\\x1B[2J\"\n");
    EXPECT_EQ(out.str(), "");
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

TEST_F(JudgeTest, CountsAreByBenchWhereTheRunTellsIt) {
    CreatePlacedRun("seven", "11");
    EXPECT_EQ(Run({"judge", directory.Path(), "--limits", limits, "--group-by", "bench"}), 0);
    EXPECT_THAT(out.str(), testing::HasSubstr("\nBench  pass"));
    EXPECT_THAT(out.str(), testing::HasSubstr("\nseven     1"));
}

TEST_F(JudgeTest, WhatNoRunTellsIsWrongUsage) {
    CreatePlacedRun("seven", "11");
    const std::string json = directory.Path("out.json");
    EXPECT_EQ(Run({"judge", directory.Path(), "--limits", limits, "--group-by", "device", "--json",
                   json}),
              2);
    EXPECT_THAT(err.str(),
                testing::HasSubstr("--group-by device needs a run that tells its device: the "
                                   "folder of one that was run with --device, or that was merged "
                                   "from such runs\n"));
    EXPECT_FALSE(std::filesystem::exists(json));
    EXPECT_EQ(Run({"judge", ResultOf("a.csv", "11"), "--limits", limits, "--group-by", "bench"}),
              2);
    EXPECT_EQ(Run({"judge", directory.Path(), "--limits", limits, "--group-by", "Bench"}), 2);
    EXPECT_THAT(err.str(), testing::HasSubstr("--group-by Bench is none of bench, device and "
                                              "attempt\n"));
}

} // namespace
} // namespace Bench
