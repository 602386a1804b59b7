#include "Tools/SarvexTool/Bench/Files/Input.h"
#include "Tools/SarvexTool/Bench/Files/Journal.h"
#include "Tools/SarvexTool/Bench/Files/Manifest.h"
#include "Tools/SarvexTool/Bench/Files/RunFacts.h"
#include "tests/Tools/SarvexTool/Bench/Commands/CommandFixture.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <fstream>
#include <iterator>

namespace Bench {
namespace {

namespace fs = std::filesystem;
using testing::HasSubstr;
using testing::Not;

/// A plan of three lines in chunks of two and one, as split makes them, and their runs.
class MergeTest : public CommandFixture {
protected:
    MergeTest() {
        directory.Create("plan.csv", "Band,Chains\n5,A\n-,B\n6,-\n");
        directory.Create("chunk-0001.csv", "Band,Chains\n5,A\n5,B\n");
        directory.Create("chunk-0002.csv", "Band,Chains\n6,B\n");
        WriteManifest();
    }

    void WriteManifest() {
        WriteManifest(3, {{"chunk-0001.csv", HashOf("chunk-0001.csv"), {2, 3}},
                          {"chunk-0002.csv", HashOf("chunk-0002.csv"), {4, 4}}});
    }

    void WriteManifest(LineNumber lines, const std::vector<ManifestChunk>& chunks) {
        const Manifest manifest{"1.0", {"/plans/plan.csv", HashOf("plan.csv"), lines}, chunks};
        directory.Create("manifest.json", ToJsonText(manifest));
    }

    std::string HashOf(const std::string& name) { return HashOfFile(directory.Path(name)); }

    struct LineRun {
        const char* line;
        const char* powers;
        Outcome outcome = Outcome::Measured;
    };

    /// A run of a chunk on a bench, of these lines.
    void MakeRun(const std::string& name, const std::string& chunk, const std::string& bench,
                 const std::vector<LineRun>& lines, bool isComplete = true) {
        fs::create_directories(directory.Path(name));
        std::string rows = Header();
        std::string journal;
        LineNumber number = 1;
        for (const LineRun& line : lines) {
            rows += std::string(line.line) + line.powers + "\n";
            const bool isAccepted = line.outcome != Outcome::Refused;
            journal +=
                LineOf(JournalEntry{.line = ++number,
                                    .outcome = {{line.outcome, ""}, {line.outcome, ""}, isAccepted},
                                    .csvEnd = rows.size(),
                                    .started = "2026-03-09T08:05:01.300Z",
                                    .seconds = 2});
        }
        directory.Create(name + "/result.csv", rows);
        directory.Create(name + "/journal.jsonl", journal);
        RunFacts facts;
        facts.testFile = {"/farm/" + chunk, HashOf(chunk)};
        facts.place.bench = bench;
        facts.countryCode = "DE";
        facts.outcome = isComplete ? "complete" : "interrupted";
        facts.linesDone = lines.size();
        WriteRunFacts(directory.Path(name + "/run.json"), facts);
    }

    void MakeFirst(const std::string& name = "runs/chunk-0001/1") {
        MakeRun(name, "chunk-0001.csv", "one", {{"5,A", ",10,NA"}, {"5,B", ",NA,11"}});
    }
    void MakeSecond(const std::string& name = "runs/chunk-0002/1") {
        MakeRun(name, "chunk-0002.csv", "two", {{"6,B", ",NA,12"}});
    }

    int Merge(const std::vector<std::string>& options = {}) {
        std::vector<std::string> arguments{"merge", directory.Path(), "-o", m_output};
        arguments.insert(arguments.end(), options.begin(), options.end());
        return Run(arguments);
    }

    void ExpectNothing(const std::string& problem) {
        EXPECT_EQ(Merge(), 2);
        EXPECT_THAT(err.str(), HasSubstr(problem));
        EXPECT_FALSE(fs::exists(m_output));
        EXPECT_FALSE(fs::exists(m_output + ".part"));
    }

    /// As a text of this system.
    std::string TextOf(const std::string& file) const {
        std::ifstream stream(m_output + "/" + file);
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    const std::string m_output = directory.Path("all");
};

TEST_F(MergeTest, AManifestWhoseChunksAreNotThePlansLinesIsAnError) {
    directory.Create("chunk-0003.csv", "Band,Chains\n5,A\n5,AB\n");
    MakeRun("runs/chunk-0003/1", "chunk-0003.csv", "one", {{"5,A", ",10,NA"}, {"5,AB", ",9,8"}});
    WriteManifest(2, {{"chunk-0003.csv", HashOf("chunk-0003.csv"), {2, 3}}});
    ExpectNothing("manifest.json: error: chunk-0003.csv has other settings than line 3 of the "
                  "plan; split the plan anew, and run its chunks\n");
    EXPECT_EQ(Merge({"--partial"}), 2);
}

TEST_F(MergeTest, AManifestThatEndsBeforeThePlanIsAnError) {
    MakeFirst();
    WriteManifest(2, {{"chunk-0001.csv", HashOf("chunk-0001.csv"), {2, 3}}});
    ExpectNothing("manifest.json: error: tells of fewer lines than the plan has\n");
}

TEST_F(MergeTest, TheRunsOfTheChunksAreOneRunOfThePlan) {
    MakeFirst();
    MakeSecond();
    MakeRun("runs/chunk-0002/0", "chunk-0002.csv", "three", {}, false);
    EXPECT_EQ(Merge(), 0) << err.str();
    EXPECT_EQ(out.str(), "Merged all 3 lines; complete: all 2 chunks.\n"
                         "Bench  chunks  lines  time\n"
                         "one         1      2  0:04\n"
                         "two         1      1  0:02\n"
                         "Not used: 1 other attempt.\n"
                         "3 measurements: 3 measured, 0 not.\n"
                         "The results are in\n  " +
                             m_output + "\n");
    EXPECT_EQ(err.str(), "");
    EXPECT_EQ(TextOf("result.csv"), Header() + "5,A,10,NA\n-,B,NA,11\n6,-,NA,12\n");
    EXPECT_EQ(TextOf("test-file.csv"), TextOf("../plan.csv"));
    EXPECT_THAT(TextOf("result.xml"), HasSubstr("MCC=\"DE\""));
    const RunFacts facts = ReadRunFacts(m_output + "/run.json");
    EXPECT_EQ(facts.testFile.name, "/plans/plan.csv");
    EXPECT_EQ(facts.linesTotal, 3u);
    EXPECT_EQ(facts.linesDone, 3u);
    EXPECT_EQ(facts.exitCode, 0);
    ASSERT_EQ(facts.sources.size(), 2u);
    EXPECT_EQ(facts.sources[1].directory, "runs/chunk-0002/1");
    EXPECT_EQ(facts.sources[1].lines, (LineRange{4, 4}));
    ASSERT_EQ(facts.otherAttempts.size(), 1u);
    EXPECT_EQ(facts.otherAttempts[0].run.directory, "runs/chunk-0002/0");
}

TEST_F(MergeTest, TheManifestMayBeNamedItself) {
    MakeFirst();
    MakeSecond();
    EXPECT_EQ(Run({"merge", directory.Path("manifest.json"), "-o", m_output}), 0) << err.str();
    EXPECT_TRUE(fs::exists(m_output + "/run.json"));
}

TEST_F(MergeTest, ARefusedLineMakesNothingUncertainInTheNextChunk) {
    MakeRun("runs/1", "chunk-0001.csv", "one",
            {{"5,A", ",10,NA"}, {"5,B", ",NA,NA", Outcome::Refused}});
    MakeSecond();
    EXPECT_EQ(Merge(), 1);
    EXPECT_THAT(out.str(), HasSubstr("3 measurements: 2 measured, 1 not.\n"));
    directory.Create("limits.csv", "Chain,Min,Max\n*,0,20\n");
    EXPECT_EQ(Run({"judge", m_output, "--limits", directory.Path("limits.csv")}), 1);
    EXPECT_THAT(out.str(), HasSubstr("line 3 chain B: not measured: the daemon refused the line"));
    EXPECT_THAT(out.str(), HasSubstr("FAIL: 1 of 3 measurements did not pass"));
}

TEST_F(MergeTest, AFirstCommandThatWasRefusedIsNotFine) {
    MakeFirst();
    MakeSecond();
    const std::string name = directory.Path("runs/chunk-0002/1/run.json");
    RunFacts facts = ReadRunFacts(name);
    facts.options.firstCommand = {"-wifi-power"};
    WriteRunFacts(name, facts);
    EXPECT_EQ(Merge(), 1);
    EXPECT_THAT(out.str(), HasSubstr("Note: 1 of the 2 runs had a first command that the daemon "));
}

TEST_F(MergeTest, MissingDoubledAndForeignRunsAreListed) {
    MakeFirst("runs/a");
    MakeFirst("runs/b");
    MakeRun("runs/c", "plan.csv", "one", {});
    MakeRun("runs/d", "chunk-0002.csv", "two", {}, false);
    ExpectNothing("manifest.json: error: chunk-0001.csv (lines 2 to 3) has more than one complete "
                  "run: runs/a, runs/b; move");
    EXPECT_THAT(err.str(), HasSubstr("error: runs/c is a run of plan.csv, which is none"));
    EXPECT_THAT(err.str(), HasSubstr("error: chunk-0002.csv (lines 4 to 4) has no complete run"));
    EXPECT_EQ(Merge({"--partial"}), 2);
    EXPECT_THAT(err.str(), HasSubstr("more than one complete run"));
    EXPECT_THAT(err.str(), HasSubstr("none of the chunks"));
    EXPECT_THAT(err.str(), Not(HasSubstr("has no complete run")));
}

TEST_F(MergeTest, ChangedFilesAreListed) {
    MakeFirst();
    MakeSecond();
    directory.Create("plan.csv", "Band,Chains\n5,A\n");
    fs::remove(directory.Path("chunk-0002.csv"));
    ExpectNothing("error: plan.csv is not what it was when the plan was split");
    EXPECT_THAT(err.str(), HasSubstr("error: chunk-0002.csv cannot be read"));
    EXPECT_EQ(Merge({"--partial"}), 2);
}

TEST_F(MergeTest, AllTornRunsAreToldAndNothingIsWritten) {
    MakeFirst();
    MakeSecond();
    directory.Create("runs/chunk-0001/1/result.csv", Header() + "5,A,10,NA\n5,B,");
    directory.Create("runs/chunk-0002/1/journal.jsonl", "");
    ExpectNothing("result.csv:3:0: error: the row is missing or cut off");
    EXPECT_THAT(err.str(), HasSubstr("journal.jsonl:1:0: error: the journal ends here"));
}

TEST_F(MergeTest, WhatIsThereIsTakenInPart) {
    MakeRun("runs/a", "chunk-0001.csv", "one", {}, false);
    MakeRun("runs/b", "chunk-0001.csv", "two", {{"5,A", ",10,NA"}}, false);
    EXPECT_EQ(Merge({"--partial"}), 1) << err.str();
    EXPECT_THAT(out.str(), HasSubstr("Merged 1 of 3 lines; complete: 0 of 2 chunks.\n"));
    EXPECT_EQ(TextOf("result.csv"), Header() + "5,A,10,NA\n-,B,NA,NA\n6,-,NA,NA\n");
    const RunFacts facts = ReadRunFacts(m_output + "/run.json");
    EXPECT_EQ(facts.outcome, "partial");
    EXPECT_EQ(facts.linesDone, 1u);
    ASSERT_EQ(facts.sources.size(), 1u);
    EXPECT_EQ(facts.sources[0].lines, (LineRange{2, 2}));
    directory.Create("limits.csv", "Chain,Min,Max\n*,0,20\n");
    EXPECT_EQ(Run({"judge", m_output, "--limits", directory.Path("limits.csv")}), 1);
    EXPECT_THAT(out.str(), HasSubstr("the run is not complete: 1 of 3 lines were run\n"));
    EXPECT_THAT(out.str(), HasSubstr("line 4 chain B: not measured: the line was not run"));
}

TEST_F(MergeTest, ARunWhoseStopWasNotConfirmedIsTold) {
    MakeFirst();
    MakeSecond();
    const std::string name = directory.Path("runs/chunk-0002/1/run.json");
    RunFacts facts = ReadRunFacts(name);
    facts.startPassedOn = true;
    facts.ended = "2026-03-09T08:06:00.000Z";
    WriteRunFacts(name, facts);
    EXPECT_EQ(Merge(), 0) << err.str();
    EXPECT_THAT(out.str(), HasSubstr("Note: The last stop was not confirmed, so that the "
                                     "transmitter may have stayed\n"
                                     "  on (runs/chunk-0002/1).\n"));
}

TEST_F(MergeTest, WithoutAnyRunAllIsNotRun) {
    EXPECT_EQ(Merge({"--partial"}), 1) << err.str();
    EXPECT_THAT(out.str(), HasSubstr("Merged 0 of 3 lines; complete: 0 of 2 chunks.\n"
                                     "3 measurements: 0 measured, 3 not.\n"));
    EXPECT_THAT(TextOf("result.xml"), HasSubstr("MCC=\"-\""));
    directory.Create("limits.csv", "Chain,Min,Max\n*,0,20\n");
    EXPECT_EQ(Run({"judge", m_output, "--limits", directory.Path("limits.csv")}), 1);
    EXPECT_THAT(out.str(), HasSubstr("country code unknown: no run has asked a daemon\n"));
}

TEST_F(MergeTest, ACompletePartialOneIsWhole) {
    MakeFirst();
    MakeSecond();
    EXPECT_EQ(Merge({"--partial"}), 0);
    EXPECT_EQ(ReadRunFacts(m_output + "/run.json").outcome, "complete");
}

TEST_F(MergeTest, AMergedRunIsNotResumed) {
    MakeFirst();
    MakeSecond();
    ASSERT_EQ(Merge(), 0);
    EXPECT_EQ(Run({"run", "--resume", m_output}), 2);
    EXPECT_THAT(err.str(), HasSubstr("is merged from other runs"));
    EXPECT_THAT(err.str(), Not(HasSubstr("stop")));
}

TEST_F(MergeTest, OldResultsAreNotOverwritten) {
    MakeFirst();
    MakeSecond();
    ASSERT_EQ(Merge(), 0);
    EXPECT_EQ(Merge(), 2);
    EXPECT_THAT(err.str(), HasSubstr("old results are never overwritten"));
}

TEST_F(MergeTest, WrongUsageIsTold) {
    MakeFirst();
    MakeSecond();
    EXPECT_EQ(Run({"merge", directory.Path()}), 2);
    EXPECT_EQ(Run({"merge", directory.Path(), "-o", ""}), 2);
    EXPECT_THAT(err.str(), HasSubstr("-o needs the name of a folder"));
    EXPECT_EQ(Run({"merge", directory.Path(), "-o", directory.Path("runs/all")}), 2);
    EXPECT_THAT(err.str(), HasSubstr("is among the runs of the chunks"));
    EXPECT_EQ(Run({"merge", directory.Path("none"), "-o", m_output}), 2);
    EXPECT_THAT(err.str(), HasSubstr("none: error: cannot be read"));
}

} // namespace
} // namespace Bench
