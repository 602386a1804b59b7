#include "tests/EndToEnd/BenchRun/MergedRunFixture.h"
#include "tests/EndToEnd/BenchRun/OddTestFiles.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <map>

// A plan that is cut into chunks, each run with a daemon that has just been started, and merged,
// gives what the client alone writes of the whole plan, wherever it was cut.

namespace EndToEnd {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;

using MergedRunTest = MergedRunFixture;

class CutRunTest : public MergedRunTest, public testing::WithParamInterface<int> {};

TEST_P(CutRunTest, IsWhatTheClientAloneWrites) {
    Split(DependentLines(23), GetParam());
    RunAll();
    const ProcessResult result = Merge();
    EXPECT_THAT(result.exitCode, testing::AnyOf(0, 1)) << result.out << result.err;
    EXPECT_THAT(result.out, HasSubstr("Merged all 23 lines; complete: all "));
    ExpectSameAsAlone();
}

INSTANTIATE_TEST_SUITE_P(LinesOfAChunk, CutRunTest, testing::Values(1, 4, 9, 23),
                         testing::PrintToStringParamName());

class MergedOddPlanTest : public MergedRunTest, public testing::WithParamInterface<const char*> {};

TEST_P(MergedOddPlanTest, IsWhatTheClientAloneWrites) {
    std::map<std::string, std::string> plans = OddTestFiles();
    plans["BlanksAroundCells"] = "Band, Chains ,Channel\n 5 ,A, 36\n-, B,-\n- ,AB\t,-\n6,A , -\n";
    plans["LastColumnWithoutATitle"] = "Band,Chains,\n5,A,\n-,B,\n6,-,x\n-,-,-\n";
    plans["SettingsThatComeLate"] = "Band,Chains,Mode\n-,A,-\n5,-,-\n-,B,SISO\n-,-,-\n";
    Split(plans.at(GetParam()), 3);
    RunAll();
    EXPECT_THAT(Merge().exitCode, testing::AnyOf(0, 1));
    ExpectSameAsAlone();
}

// Of those that can be split, the ones without a line that takes a setting from a refused one.
INSTANTIATE_TEST_SUITE_P(, MergedOddPlanTest,
                         testing::Values("Short", "CrLf", "LineEndsOfBothKinds", "NoLastLineEnd",
                                         "SurplusCells", "EmptyLines", "TextOfAnAnswer", "LongCell",
                                         "BlanksAroundCells", "LastColumnWithoutATitle",
                                         "SettingsThatComeLate"),
                         [](const auto& test) { return std::string(test.param); });

TEST_F(MergedRunTest, AnAttemptThatEndedEarlyIsRecordedAndNotUsed) {
    Split(DependentLines(12), 6);
    const std::vector<std::string> chunks = Chunks();
    {
        // The fourth line at the latest is waited for until the run is killed.
        const Simulator daemon({"--fault", "9:no-answer"});
        const auto run = tests.Start(RunOf(daemon, chunks[0], "1", "dead"));
        ASSERT_TRUE(
            WaitForLines(*run, tests.Path("parts/runs/" + chunks[0] + "/1/journal.jsonl"), 2));
        run->Kill();
        run->Wait();
    }
    for (const std::string& chunk : chunks) {
        const Simulator daemon;
        tests.Supervise(RunOf(daemon, chunk, chunk == chunks[0] ? "2" : "1"));
    }
    const ProcessResult result = Merge();
    EXPECT_THAT(result.exitCode, testing::AnyOf(0, 1)) << result.out << result.err;
    EXPECT_THAT(result.out, HasSubstr("Not used: 1 other attempt.\n"));
    EXPECT_THAT(tests.Read("all/run.json"), HasSubstr("\"bench\": \"dead\""));
    ExpectSameAsAlone();
}

TEST_F(MergedRunTest, WhatWasRunIsMergedInPart) {
    Split(DependentLines(9), 3);
    const std::vector<std::string> chunks = Chunks();
    {
        const Simulator daemon;
        tests.Supervise(RunOf(daemon, chunks[1], "1"));
    }
    EXPECT_EQ(Merge().exitCode, 2);
    EXPECT_FALSE(fs::exists(tests.Path("all")));
    const ProcessResult result = Merge({"--partial"});
    EXPECT_EQ(result.exitCode, 1) << result.err;
    EXPECT_THAT(result.out, HasSubstr("Merged 3 of 9 lines; complete: 1 of 3 chunks.\n"));
}

/// Starts a merge and kills it when there is a file or folder of that name, or when it has ended.
void KillMergeAt(const PowerTests& tests, const std::string& name) {
    const auto merge = tests.Start({"merge", "parts", "-o", "all"});
    while (!fs::exists(tests.Path(name)) && !merge->HasEnded()) {
    }
    merge->Kill();
    merge->Wait();
}

TEST_F(MergedRunTest, AKilledMergeLeavesNoneThatLooksWhole) {
    Split(DependentLines(40), 20);
    RunAll();
    const Results alone = tests.RunAlone("plan.csv");
    for (const char* const name : {"all.part", "all.part/run.lock", "all.part/run",
                                   "all.part/run/test-file.csv", "all.part/run/journal.jsonl",
                                   "all.part/run/result.xml", "all.part/run/run.json", "all"}) {
        SCOPED_TRACE(name);
        KillMergeAt(tests, name);
        if (fs::exists(tests.Path("all"))) {
            EXPECT_EQ(tests.ResultsIn("all"), alone);
            EXPECT_THAT(tests.Read("all/run.json"), HasSubstr("\"outcome\": \"complete\""));
            fs::remove_all(tests.Path("all"));
        }
    }
    EXPECT_THAT(Merge().exitCode, testing::AnyOf(0, 1));
    EXPECT_FALSE(fs::exists(tests.Path("all.part")));
    EXPECT_EQ(tests.ResultsIn("all"), alone);
}

} // namespace
} // namespace EndToEnd
