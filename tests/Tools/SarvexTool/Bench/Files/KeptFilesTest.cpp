#include "Tools/SarvexTool/Bench/Files/KeptFiles.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Journal.h"
#include "Tools/SarvexTool/Bench/Files/Locks.h"
#include "Tools/SarvexTool/Bench/Files/RunFacts.h"
#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>

namespace Bench {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class KeptFilesTest : public testing::Test {
protected:
    static std::string Header() { return "Band,Chains,Chain-A Power, Chain B Power\n"; }

    RunFacts Facts() const {
        RunFacts facts;
        facts.user = "mia";
        facts.host = "pc7";
        facts.started = "2026-03-09T08:05:00.250Z";
        facts.testFile = {"C:\\plans\\short.csv", std::string(64, 'a')};
        facts.daemon = "127.0.0.1:8738";
        facts.place = {"bench 1", "DUT-5", 2};
        facts.firmware = "2.1";
        facts.note = "after the repair";
        facts.macType = 3;
        facts.countryCode = "DE";
        facts.linesTotal = 2;
        facts.linesDone = 2;
        facts.outcome = "complete";
        facts.exitCode = 0;
        return facts;
    }

    /// A run of two lines in the folder "run".
    std::string MakeRun(const RunFacts& facts, std::size_t finished = 2) const {
        fs::create_directories(PathOf(directory.Path("run")));
        directory.Create("run/test-file.csv", "Band,Chains\n5,AB\n-,A\n");
        const std::string first = Header() + "5,AB,10.5,NA\n";
        directory.Create("run/result.csv", first + "-,A,11,NA\n");
        const std::string journal =
            LineOf(JournalEntry{
                .line = 2,
                .outcome = {{Outcome::Measured, ""}, {Outcome::ChainNotActive, "no <B>"}, true},
                .csvEnd = first.size()}) +
            LineOf(JournalEntry{.line = 3,
                                .outcome = {{Outcome::Measured, ""}, {}, true},
                                .csvEnd = first.size() + 10});
        directory.Create("run/journal.jsonl",
                         finished == 2 ? journal : journal.substr(0, journal.find('\n') + 1));
        directory.Create("run/exchanges.jsonl", std::string("{}\n\0\xFF", 5));
        directory.Create("run/client.log", "");
        directory.Create("run/result.xml", "<PowerTable MCC=\"DE\"/>");
        directory.Create("run/notes.txt", "not kept");
        WriteRunFacts(directory.Path("run/run.json"), facts);
        return directory.Path("run");
    }

    RunToKeep Read(const std::string& name, const KeepOptions& options = {}) {
        return ReadRunToKeep(name, options, texts);
    }

    std::string ProblemOf(const std::string& name, const KeepOptions& options = {}) {
        try {
            Read(name, options);
        } catch (const BadFile& bad) {
            return bad.Problems().front().text;
        }
        return "none";
    }

    static std::vector<std::string> NamesOf(const std::vector<KeptContent>& files) {
        std::vector<std::string> names;
        for (const KeptContent& file : files)
            names.push_back(file.name);
        return names;
    }

    TestSupport::TemporaryDirectory directory;
    TextPool texts;
};

TEST_F(KeptFilesTest, ARunDirectoryTellsAllOfItself) {
    const RunToKeep run = Read(MakeRun(Facts()));
    const KeptFacts expected{.hash = HashOf(run.files),
                             .keptAt = 0,
                             .measuredAt = 1'773'043'500,
                             .name = "short.csv",
                             .testFileSha256 = std::string(64, 'a'),
                             .bench = "bench 1",
                             .device = "DUT-5",
                             .firmware = "2.1",
                             .note = "after the repair",
                             .user = "mia",
                             .host = "pc7",
                             .daemon = "127.0.0.1:8738",
                             .macType = 3,
                             .countryCode = "DE",
                             .outcome = "complete",
                             .verdict = KeptVerdict::NotJudged,
                             .lines = 2,
                             .measurements = 3,
                             .measured = 2,
                             .parts = {{"bench 1", "DUT-5", 2}}};
    EXPECT_EQ(run.facts, expected);
    EXPECT_FALSE(run.isTimeOfFile);
    EXPECT_THAT(run.parts, ElementsAre(0u, 0u));
    EXPECT_EQ(run.result.measurements[1].reason.ToText(), "the chain was not active: no <B>");
}

TEST_F(KeptFilesTest, TheFilesOfARunDirectoryAreThoseOfARun) {
    const RunToKeep run = Read(MakeRun(Facts()));
    EXPECT_THAT(NamesOf(run.files),
                ElementsAre("client.log", "exchanges.jsonl", "journal.jsonl", "result.csv",
                            "result.xml", "run.json", "test-file.csv"));
    for (const KeptContent& file : run.files)
        EXPECT_EQ(file.bytes, TestSupport::ReadBytes(directory.Path("run/" + file.name)))
            << file.name;
}

TEST_F(KeptFilesTest, TheFolderAndItsResultAreTheSameRun) {
    const std::string folder = MakeRun(Facts());
    EXPECT_EQ(Read(folder).facts, Read(folder + "/result.csv").facts);
    EXPECT_EQ(Read(folder).facts, Read(folder + "/").facts);
}

TEST_F(KeptFilesTest, TheHashIsOfNamesSizesAndBytes) {
    // printf 'b\n0\na\n3\nx\ny' | sha256sum
    EXPECT_EQ(HashOf({{"b", ""}, {"a", "x\ny"}}),
              "ef81bd9f6672f9a34560faf562bc6b99c38e65a8fe25c6c7121dea6c74cdbaf6");
    EXPECT_NE(HashOf({{"a", "b"}}), HashOf({{"a", "c"}}));
    EXPECT_NE(HashOf({{"a", "b"}}), HashOf({{"c", "b"}}));
}

TEST_F(KeptFilesTest, ARunWithLimitsWasJudgedByItsExitCode) {
    RunFacts facts = Facts();
    facts.options.limits = "limits.csv";
    const std::vector<std::pair<std::int32_t, KeptVerdict>> cases{
        {0, KeptVerdict::Pass}, {1, KeptVerdict::Fail}, {4, KeptVerdict::NotJudged}};
    for (const auto& [exitCode, verdict] : cases) {
        facts.exitCode = exitCode;
        EXPECT_EQ(Read(MakeRun(facts)).facts.verdict, verdict) << exitCode;
    }
    facts.exitCode.reset();
    EXPECT_EQ(Read(MakeRun(facts)).facts.verdict, KeptVerdict::NotJudged);
    facts.exitCode = 0;
    facts.options.limits.reset();
    EXPECT_EQ(Read(MakeRun(facts)).facts.verdict, KeptVerdict::NotJudged);
}

TEST_F(KeptFilesTest, ARunThatEndedEarlyIsRefusedUnlessAPartIsWanted) {
    RunFacts facts = Facts();
    facts.outcome = "interrupted";
    const std::string run = MakeRun(facts, 1);
    EXPECT_EQ(ProblemOf(run),
              "the run is not complete: 1 of 2 lines were run; go on with it (SarvexToolBench run "
              "--resume), or keep what there is with --partial");
    const RunToKeep part = Read(run, {.isPartial = true});
    EXPECT_EQ(part.facts.lines, 1u);
    EXPECT_EQ(part.facts.outcome, "interrupted");
    EXPECT_EQ(part.result.earlyEnd, (EarlyEnd{1, 2}));
}

TEST_F(KeptFilesTest, ARunWhoseLastStopWasNotConfirmedIsRefusedUnlessAPartIsWanted) {
    RunFacts facts = Facts();
    facts.startPassedOn = true;
    facts.exitCode = 4;
    const std::string run = MakeRun(facts);
    EXPECT_EQ(ProblemOf(run),
              "the daemon has not confirmed the stop of its last transmission; go on with it "
              "(SarvexToolBench run --resume), or keep what there is with --partial");
    EXPECT_EQ(ProblemOf(run, {.isPartial = true}), "none");
    facts.stopConfirmed = true;
    EXPECT_EQ(ProblemOf(MakeRun(facts)), "none");
    facts.stopConfirmed = false;
    facts.isMerged = true;
    EXPECT_EQ(ProblemOf(MakeRun(facts)), "none") << "it cannot be resumed";
}

TEST_F(KeptFilesTest, WhatTheExitCodeDoesNotTellTheRunsLimitsDo) {
    RunFacts facts = Facts();
    facts.exitCode = 4;
    facts.linesTotal = 1;
    facts.options.limits = directory.Path("limits.csv");
    const auto verdict = [&](const std::string& limits) {
        directory.Create("limits.csv", limits);
        MakeRun(facts);
        const std::string result = Header() + "5,A,10.5,NA\n";
        directory.Create("run/result.csv", result);
        directory.Create("run/journal.jsonl",
                         LineOf(JournalEntry{.line = 2,
                                             .outcome = {{Outcome::Measured, ""}, {}, true},
                                             .csvEnd = result.size()}));
        return Read(directory.Path("run"), {.isPartial = true}).facts.verdict;
    };
    const std::string passed = "Chain,Min,Max\nA,10,11\n";
    EXPECT_EQ(verdict(passed), KeptVerdict::Pass);
    EXPECT_EQ(verdict("Chain,Min,Max\nA,11,12\n"), KeptVerdict::Fail);
    EXPECT_EQ(verdict("no limits\n"), KeptVerdict::NotJudged);
    facts.options.firstCommand = {"mode"};
    EXPECT_EQ(verdict(passed), KeptVerdict::Fail) << "the daemon has not kept its settings";
    facts.options.firstCommandAccepted = true;
    EXPECT_EQ(verdict(passed), KeptVerdict::Pass);
    facts.linesTotal = 2;
    facts.outcome = "interrupted";
    EXPECT_EQ(verdict(passed), KeptVerdict::Fail) << "a run that ended early has not passed";
}

TEST_F(KeptFilesTest, ARunThatGoesOnIsRefusedInAnyCase) {
    RunFacts facts = Facts();
    facts.outcome = "";
    const std::string run = MakeRun(facts, 1);
    const OSAL::FileLock lock = TakeLock(run + "/run.lock", run, "the run", {7, "", "now"});
    EXPECT_THROW(Read(run), InUse);
    EXPECT_THROW(Read(run, {.isPartial = true}), InUse);
}

TEST_F(KeptFilesTest, ACompleteRunIsReadWithoutWritingIntoItsFolder) {
    const std::string run = MakeRun(Facts());
    Read(run);
    EXPECT_FALSE(fs::exists(PathOf(run + "/run.lock")));
}

TEST_F(KeptFilesTest, WhatARunTellsItselfIsNotToldAnew) {
    const std::string run = MakeRun(Facts());
    EXPECT_EQ(ProblemOf(run, {.bench = "bench 1", .firmware = "2.1"}), "none");
    EXPECT_EQ(ProblemOf(run, {.bench = "bench 2"}),
              "tells another bench itself (bench 1); leave out --bench");
    EXPECT_EQ(ProblemOf(run, {.device = "x"}),
              "tells another device itself (DUT-5); leave out --device");
    EXPECT_EQ(ProblemOf(run, {.firmware = "2.2"}),
              "tells another firmware itself (2.1); leave out --firmware");
    EXPECT_EQ(ProblemOf(run, {.note = ""}),
              "tells another note itself (after the repair); leave out --note");
    EXPECT_THAT(ProblemOf(run, {.measuredAt = 1}), HasSubstr("leave out --measured"));
}

TEST_F(KeptFilesTest, WhatNothingTellsIsTakenFromTheOptions) {
    RunFacts facts = Facts();
    facts.place = {};
    facts.firmware.reset();
    const RunToKeep run = Read(MakeRun(facts), {.bench = "b", .device = "d", .firmware = "f"});
    EXPECT_EQ(run.facts.bench, "b");
    EXPECT_EQ(run.facts.device, "d");
    EXPECT_EQ(run.facts.firmware, "f");
    EXPECT_THAT(run.facts.parts, ElementsAre(RunPlace{"b", "d", std::nullopt}));
}

TEST_F(KeptFilesTest, AMergedRunHasAPartForEachPlace) {
    RunFacts facts = Facts();
    facts.isMerged = true;
    facts.place = {};
    RunSource source;
    source.lines = {2, 2};
    source.place = {"one", "d", 1};
    facts.sources.push_back(source);
    source.lines = {3, 3};
    source.place = {"two", "d", 1};
    facts.sources.push_back(source);
    facts.options.limits = "limits.csv";
    const RunToKeep run = Read(MakeRun(facts));
    EXPECT_THAT(run.facts.parts, ElementsAre(RunPlace{"one", "d", 1}, RunPlace{"two", "d", 1}));
    EXPECT_THAT(run.parts, ElementsAre(0u, 1u));
    EXPECT_EQ(run.facts.bench, std::nullopt);
    EXPECT_EQ(run.facts.device, "d");
    // Its exit code does not tell of limits.
    EXPECT_EQ(run.facts.verdict, KeptVerdict::NotJudged);
    EXPECT_EQ(ProblemOf(directory.Path("run"), {.bench = "one"}),
              "tells another bench itself (two); leave out --bench");
}

TEST_F(KeptFilesTest, APlainResultIsToldByTheOptionsAndItsFolder) {
    fs::create_directories(PathOf(directory.Path("Lauf 7")));
    const std::string name = directory.Create("Lauf 7/result.csv", Header() + "5,A,10.5,NA\n");
    directory.Create("Lauf 7/result.xml", "<?xml version=\"1.0\"?><PowerTable MCC=\"FR\"/>");
    const RunToKeep run = Read(name, {.bench = "b",
                                      .device = {},
                                      .firmware = {},
                                      .note = "n",
                                      .measuredAt = 99,
                                      .isPartial = false});
    EXPECT_EQ(run.facts.name, "Lauf 7");
    EXPECT_EQ(run.facts.measuredAt, 99);
    EXPECT_FALSE(run.isTimeOfFile);
    EXPECT_EQ(run.facts.bench, "b");
    EXPECT_EQ(run.facts.note, "n");
    EXPECT_EQ(run.facts.outcome, std::nullopt);
    EXPECT_EQ(run.facts.testFileSha256, std::nullopt);
    EXPECT_THAT(NamesOf(run.files), ElementsAre("result.csv", "result.xml"));
    EXPECT_EQ(Read(directory.Path("Lauf 7") + "/").facts.name, "Lauf 7");
}

TEST_F(KeptFilesTest, WithoutAToldTimeThatOfTheFileCounts) {
    const std::string name = directory.Create("result.csv", Header() + "5,A,10.5,NA\n");
    fs::last_write_time(PathOf(name), std::chrono::file_clock::from_sys(std::chrono::sys_seconds(
                                          std::chrono::seconds(1'700'000'000))));
    const RunToKeep run = Read(name);
    EXPECT_EQ(run.facts.measuredAt, 1'700'000'000);
    EXPECT_TRUE(run.isTimeOfFile);
}

TEST_F(KeptFilesTest, AFileOfAnotherNameIsARunOfItsOwn) {
    MakeRun(Facts());
    const std::string name = directory.Create("run/bench7.csv", Header() + "5,A,10.5,NA\n");
    const RunToKeep run = Read(name);
    EXPECT_EQ(run.facts.name, "bench7.csv");
    EXPECT_THAT(run.files, ElementsAre(KeptContent{"result.csv", Header() + "5,A,10.5,NA\n"}));
}

TEST_F(KeptFilesTest, WhatCannotBeReadIsTold) {
    EXPECT_EQ(ProblemOf(directory.Path("none")), "cannot be read");
    EXPECT_EQ(ProblemOf(directory.Path()), "cannot be read");
    EXPECT_THAT(ProblemOf(directory.Create("x.csv", "hello\n")), HasSubstr("header"));
    const std::string run = MakeRun(Facts());
    fs::remove(PathOf(run + "/journal.jsonl"));
    EXPECT_EQ(ProblemOf(run), "cannot be read");
    RunFacts facts = Facts();
    facts.started = "yesterday";
    EXPECT_EQ(ProblemOf(MakeRun(facts)),
              "does not tell when the run started, as 2026-03-09T08:05:00Z");
}

TEST_F(KeptFilesTest, FilesComeBackByteForByte) {
    const RunToKeep run = Read(MakeRun(Facts()));
    const std::string place = directory.Path("back");
    WriteKeptFiles(place, run.files);
    EXPECT_EQ(static_cast<std::size_t>(std::distance(fs::directory_iterator(PathOf(place)), {})),
              run.files.size());
    EXPECT_EQ(Read(place).facts, run.facts);
    EXPECT_FALSE(fs::exists(PathOf(place + ".part")));
}

TEST_F(KeptFilesTest, NothingIsOverwritten) {
    directory.Create("file", "x");
    EXPECT_THROW(WriteKeptFiles(directory.Path(), {{"result.csv", "x"}}), BadOutput);
    EXPECT_THROW(WriteKeptFiles(directory.Path("file"), {{"result.csv", "x"}}), BadOutput);
}

TEST_F(KeptFilesTest, ANameOfNoRunIsNotWritten) {
    for (const char* name : {"", "../result.csv", "/tmp/result.csv", "run.lock", "Result.csv"}) {
        EXPECT_THROW(WriteKeptFiles(directory.Path("back"), {{"result.csv", "x"}, {name, "y"}}),
                     BadOutput)
            << name;
        EXPECT_FALSE(fs::exists(PathOf(directory.Path("back")))) << name;
    }
}

} // namespace
} // namespace Bench
