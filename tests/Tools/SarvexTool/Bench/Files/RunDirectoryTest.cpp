#include "Tools/SarvexTool/Bench/Files/RunDirectory.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <iterator>
#include <optional>
#include <string>
#include <system_error>
#include <vector>

namespace Bench {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::StartsWith;
using TestSupport::WriteBytes;

const LockHolder holder{.processId = 1, .directory = "here", .since = "now"};

class RunDirectoryTest : public testing::Test {
protected:
    RunDirectory Create() const { return RunDirectory::Create(folder, testFile, {}, holder); }
    RunDirectory Resume() const { return RunDirectory::Resume(folder, holder); }

    static void KeepLine(RunDirectory& run, LineNumber line, const std::string& row) {
        run.KeepLine({.line = line, .outcome = {}, .row = row}, "2026-03-09T08:05:00.007Z", 0.5);
    }

    // The names of the tests' support are not in UTF-8 everywhere.
    static std::string Read(const std::string& name) {
        std::ifstream file(PathOf(name), std::ios::binary);
        return {std::istreambuf_iterator<char>(file), {}};
    }
    static void Write(const std::string& name, const std::string& bytes) {
        std::ofstream(PathOf(name), std::ios::binary) << bytes;
    }

    /// A run of two lines that has ended.
    void MakeRun() const {
        RunDirectory run = Create();
        run.KeepHeader("Band,A, B\n");
        KeepLine(run, 2, "5,1,2\n");
        KeepLine(run, 3, "6,3,4\n");
    }

    std::vector<std::string> Names(const std::string& path) const {
        std::vector<std::string> names;
        for (const auto& entry : fs::directory_iterator(PathOf(path)))
            names.push_back(entry.path().filename().string());
        std::ranges::sort(names);
        return names;
    }

    /// The file and the text of the problem that a call tells.
    template <typename Error, typename Call>
    static std::string ProblemOf(Call call) {
        try {
            call();
        } catch (const Error& bad) {
            return bad.File() + ": " + bad.Problems().at(0).text;
        }
        return "none";
    }

    TestSupport::TemporaryDirectory directory;
    const std::string testFile = directory.Create("short.csv", "Band\r\n5\n6\x1A\n7");
    const std::string folder = directory.Path() + "/the runs/Prüf lauf";
    const std::string result = folder + "/result.csv";
    const RunFiles files{folder};
};

TEST_F(RunDirectoryTest, ANewRunHasACopyOfItsTestFileAndEmptyResults) {
    RunDirectory run = Create();
    EXPECT_THAT(Names(folder), ElementsAre("exchanges.jsonl", "journal.jsonl", "result.csv",
                                           "result.xml", "run.json", "run.lock", "test-file.csv"));
    EXPECT_EQ(Read(files.testFile), "Band\r\n5\n6\x1A\n7");
    EXPECT_EQ(Read(files.result), "");
    EXPECT_EQ(Read(files.tree), "");
    EXPECT_EQ(Read(files.journal), "");
    const RunFacts facts = ReadRunFacts(files.facts);
    EXPECT_EQ(facts.testFile.name, NameOf(fs::absolute(testFile)));
    EXPECT_EQ(facts.testFile.sha256,
              "8b4d10d302b79b89c1bc360e22375ade17840458492feab5075861eeb0bb1976");
    EXPECT_EQ(run.Facts(), facts);
    EXPECT_EQ(run.LastLine(), 0u);
    EXPECT_TRUE(run.IsResultEmpty());
}

TEST_F(RunDirectoryTest, KeepsRowsAndJournalsThem) {
    RunDirectory run = Create();
    run.KeepHeader("Band,A, B\r\n");
    EXPECT_FALSE(run.IsResultEmpty());
    KeepLine(run, 2, "5,1,2\r\n");
    EXPECT_EQ(run.LastLine(), 2u);
    KeepLine(run, 3, "6,NA,NA\r\n");
    EXPECT_EQ(Read(files.result), "Band,A, B\r\n5,1,2\r\n6,NA,NA\r\n");
    const std::vector<JournalEntry> entries = ReadJournal(files.journal);
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].line, 2u);
    EXPECT_EQ(entries[0].csvEnd, 18u);
    EXPECT_EQ(entries[1].csvEnd, 27u);
    EXPECT_EQ(entries[1].started, "2026-03-09T08:05:00.007Z");
    EXPECT_EQ(entries[1].seconds, 0.5);
}

TEST_F(RunDirectoryTest, FactsAreSavedAsTheyAre) {
    RunDirectory run = Create();
    run.Facts().startPassedOn = true;
    EXPECT_FALSE(ReadRunFacts(files.facts).startPassedOn);
    run.SaveFacts();
    EXPECT_TRUE(ReadRunFacts(files.facts).startPassedOn);
}

TEST_F(RunDirectoryTest, IsLockedWhileItLives) {
    std::optional<RunDirectory> run(Create());
    EXPECT_THAT(ProblemOf<InUse>([&] { Resume(); }),
                HasSubstr("the run is in use by process 1, since now, with the run in here"));
    run.reset();
    run.emplace(Resume());
    EXPECT_THAT(ProblemOf<InUse>([&] { Resume(); }), HasSubstr("the run is in use by process 1"));
}

TEST_F(RunDirectoryTest, ARunGoesOnAfterItsLastLine) {
    MakeRun();
    {
        RunDirectory run = Resume();
        EXPECT_EQ(run.LastLine(), 3u);
        EXPECT_FALSE(run.IsResultEmpty());
        KeepLine(run, 4, "7,5,6\n");
    }
    EXPECT_EQ(Read(files.result), "Band,A, B\n5,1,2\n6,3,4\n7,5,6\n");
    EXPECT_EQ(ReadJournal(files.journal).size(), 3u);
}

TEST_F(RunDirectoryTest, WhatIsNotJournalledIsCutOff) {
    MakeRun();
    Write(files.result, Read(files.result) + "7,5,6\n8,");
    Write(files.journal, Read(files.journal) + "{\"line\":4,\"acc");
    {
        RunDirectory run = Resume();
        EXPECT_EQ(run.LastLine(), 3u);
        KeepLine(run, 4, "7,9,9\n");
    }
    EXPECT_EQ(Read(files.result), "Band,A, B\n5,1,2\n6,3,4\n7,9,9\n");
    EXPECT_EQ(ReadJournal(files.journal).back().csvEnd, Read(files.result).size());
}

TEST_F(RunDirectoryTest, WhereverAWriteWasTornTheRestIsARun) {
    MakeRun();
    const std::string rows = Read(files.result);
    const std::string journal = Read(files.journal);
    const std::size_t firstEntry = journal.find('\n') + 1;
    // The row of line 3 was written to some byte; then the row was whole and its entry was not.
    for (std::size_t size = 16; size < rows.size(); ++size) {
        Write(files.result, rows.substr(0, size));
        Write(files.journal, journal.substr(0, firstEntry));
        EXPECT_EQ(Resume().LastLine(), 2u);
        EXPECT_EQ(Read(files.result), rows.substr(0, 16));
    }
    for (std::size_t size = firstEntry; size < journal.size(); size += 13) {
        Write(files.result, rows);
        Write(files.journal, journal.substr(0, size));
        EXPECT_EQ(Resume().LastLine(), 2u);
        EXPECT_EQ(Read(files.result), rows.substr(0, 16));
        EXPECT_EQ(Read(files.journal), journal.substr(0, firstEntry));
    }
}

TEST_F(RunDirectoryTest, WithoutAFinishedLineTheResultBeginsAnew) {
    { Create().KeepHeader("Band,A, B\n"); }
    RunDirectory run = Resume();
    EXPECT_EQ(run.LastLine(), 0u);
    EXPECT_TRUE(run.IsResultEmpty());
    EXPECT_EQ(Read(files.result), "");
}

TEST_F(RunDirectoryTest, ResultsThatWereChangedAreRefused) {
    MakeRun();
    const std::string rows = Read(files.result);
    for (const std::string& bytes :
         {rows.substr(0, rows.size() - 1), std::string(rows.size(), 'x')}) {
        Write(files.result, bytes);
        EXPECT_EQ(ProblemOf<BadInput>([&] { Resume(); }),
                  files.result + ": does not hold the rows that the journal tells of; the file was "
                                 "changed");
        EXPECT_EQ(Read(files.result), bytes);
    }
    Write(files.journal, "x\n" + Read(files.journal));
    EXPECT_EQ(ProblemOf<BadInput>([&] { Resume(); }),
              files.journal + ": there is no object of JSON");
}

TEST_F(RunDirectoryTest, ResultsThatAreGoneAreTold) {
    MakeRun();
    for (const std::string& name : {files.result, files.journal}) {
        SCOPED_TRACE(name);
        fs::rename(PathOf(name), PathOf(name + ".away"));
        EXPECT_EQ(ProblemOf<BadInput>([&] { Resume(); }),
                  name + ": is missing, and the run cannot go on without it; begin a new run");
        EXPECT_FALSE(fs::exists(PathOf(name)));
        fs::rename(PathOf(name + ".away"), PathOf(name));
    }
    EXPECT_EQ(Resume().LastLine(), 3u);
}

TEST_F(RunDirectoryTest, TooLongANameIsTold) {
    const std::string name(300, 'a');
    EXPECT_THAT(ProblemOf<BadOutput>([&] { RunDirectory::Create(name, testFile, {}, holder); }),
                StartsWith(name + ": cannot be made the folder of a run ("));
    EXPECT_EQ(ProblemOf<BadInput>([&] { RunDirectory::Resume(name, holder); }),
              name + ": holds no run: run.json is missing");
}

TEST_F(RunDirectoryTest, AMergedRunDoesNotGoOn) {
    MakeRun();
    RunFacts facts = ReadRunFacts(files.facts);
    facts.isMerged = true;
    WriteRunFacts(files.facts, facts);
    std::filesystem::remove(PathOf(files.lock));
    EXPECT_EQ(ProblemOf<BadInput>([&] { Resume(); }),
              folder + ": is merged from other runs; resume those of them that are not complete, "
                       "and merge them again");
    EXPECT_FALSE(std::filesystem::exists(PathOf(files.lock)));
}

TEST_F(RunDirectoryTest, ATestFileThatHasChangedIsRefused) {
    MakeRun();
    WriteBytes(testFile, "Band\n5\n6\n8\n");
    EXPECT_EQ(ProblemOf<BadInput>([&] { Resume(); }),
              NameOf(fs::absolute(testFile)) +
                  ": has changed since the run began; begin a new run");
    // The copy is enough.
    fs::remove(testFile);
    EXPECT_EQ(Resume().LastLine(), 3u);
    Write(files.testFile, "Band\n");
    EXPECT_EQ(ProblemOf<BadInput>([&] { Resume(); }),
              files.testFile + ": is not the test file that the run began with; begin a new run");
}

TEST_F(RunDirectoryTest, OldResultsAreNeverOverwritten) {
    fs::create_directories(PathOf(folder));
    for (const std::string name : {"result.csv", "result.xml", "run.json", "journal.jsonl",
                                   "exchanges.jsonl", "test-file.csv", "client.log", "client"}) {
        Write(folder + "/" + name, "old");
        EXPECT_EQ(ProblemOf<BadOutput>([&] { Create(); }),
                  folder + ": holds a run or results already (" + name +
                      "), and old results are never overwritten; name another folder");
        EXPECT_THAT(Names(folder), ElementsAre(name));
        EXPECT_EQ(Read(folder + "/" + name), "old");
        fs::remove(PathOf(folder + "/" + name));
    }
    Write(folder + "/notes.txt", "mine");
    Create();
    EXPECT_EQ(Read(folder + "/notes.txt"), "mine");
    EXPECT_THAT(ProblemOf<BadOutput>([&] { Create(); }), HasSubstr("holds a run"));
}

TEST_F(RunDirectoryTest, WhatARunLeftThatWasKilledBeforeItBeganIsNoRun) {
    const std::vector<std::string> empty{"result.csv", "journal.jsonl", "result.xml",
                                         "exchanges.jsonl"};
    const std::string whole = "Band\r\n5\n6\x1A\n7";
    // The files come in this order; the copy of the test file grows.
    for (std::size_t step = 0; step <= 1 + whole.size() + empty.size(); ++step) {
        SCOPED_TRACE(step);
        fs::create_directories(PathOf(folder));
        Write(files.lock, "process 7");
        if (step > 0)
            Write(files.testFile, whole.substr(0, step - 1));
        for (std::size_t count = 0; step > 1 + whole.size() + count; ++count)
            Write(folder + "/" + empty[count], "");
        Write(files.facts + ".part", "{");
        MakeRun();
        EXPECT_EQ(Read(files.testFile), whole);
        EXPECT_EQ(Resume().LastLine(), 3u);
        fs::remove_all(PathOf(folder));
    }
}

TEST_F(RunDirectoryTest, WhatMayBeMissedIsNotTakenForSuchARun) {
    struct Row {
        const char* name;
        const char* bytes;
    };
    for (const Row& row :
         {Row{"test-file.csv", "Band\r\n4"}, Row{"test-file.csv", "Band\r\n5\n6\x1A\n7\n"},
          Row{"result.csv", "\n"}, Row{"journal.jsonl", "{"}, Row{"exchanges.jsonl", "{"},
          Row{"result.xml", "<"}, Row{"client.log", ""}, Row{"run.json", ""}}) {
        SCOPED_TRACE(row.name);
        fs::create_directories(PathOf(folder));
        Write(files.lock, "process 7");
        Write(files.result, "");
        Write(folder + "/" + row.name, row.bytes);
        EXPECT_THAT(ProblemOf<BadOutput>([&] { Create(); }), HasSubstr("holds a run or results"));
        EXPECT_EQ(Read(folder + "/" + row.name), row.bytes);
        EXPECT_TRUE(fs::exists(PathOf(files.result)));
        fs::remove_all(PathOf(folder));
    }
    // Nor is the test file itself, under the name of the copy.
    fs::create_directories(PathOf(folder));
    Write(files.lock, "process 7");
    Write(files.testFile, "Band\n");
    EXPECT_THAT(
        ProblemOf<BadOutput>([&] { RunDirectory::Create(folder, files.testFile, {}, holder); }),
        HasSubstr("(test-file.csv)"));
    EXPECT_EQ(Read(files.testFile), "Band\n");
}

TEST_F(RunDirectoryTest, NothingIsLeftOfARunThatCannotBegin) {
    fs::remove(testFile);
    EXPECT_THAT(ProblemOf<BadInput>([&] { Create(); }), HasSubstr("cannot be read ("));
    EXPECT_FALSE(fs::exists(PathOf(folder + "/test-file.csv")));
    fs::create_directory(testFile);
    EXPECT_THAT(ProblemOf<BadInput>([&] { Create(); }), HasSubstr("cannot be read ("));
    EXPECT_FALSE(fs::exists(PathOf(folder + "/test-file.csv")));
    fs::remove(testFile);
    WriteBytes(testFile, "Band\n");
    EXPECT_EQ(Create().LastLine(), 0u);
}

TEST_F(RunDirectoryTest, AFileCannotBeTheFolder) {
    for (const std::string& name : {testFile, testFile + "/run"}) {
        EXPECT_THAT(ProblemOf<BadOutput>([&] { RunDirectory::Create(name, testFile, {}, holder); }),
                    StartsWith(name + ": cannot be made the folder of a run ("));
        EXPECT_EQ(Read(testFile), "Band\r\n5\n6\x1A\n7");
    }
}

TEST_F(RunDirectoryTest, AFolderWithoutARunIsNotResumed) {
    EXPECT_EQ(ProblemOf<BadInput>([&] { Resume(); }),
              folder + ": holds no run: run.json is missing");
    EXPECT_FALSE(fs::exists(PathOf(folder)));
}

TEST_F(RunDirectoryTest, AVanishedFolderIsTold) {
    RunDirectory run = Create();
    fs::rename(PathOf(folder), directory.Path("away"));
    try {
        run.SaveFacts();
        FAIL() << "nothing was thrown";
    } catch (const std::system_error& error) {
        EXPECT_THAT(error.what(), HasSubstr("cannot open " + files.facts + ".part: "));
    }
}

} // namespace
} // namespace Bench
