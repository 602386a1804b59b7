#include "Tools/SarvexTool/Bench/Files/FoundRuns.h"

#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "Tools/SarvexTool/Bench/Files/Journal.h"
#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <filesystem>

namespace Bench {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::IsEmpty;

class FoundRunsTest : public testing::Test {
protected:
    /// Makes a folder with facts of that user.
    void MakeRun(const std::string& name, const std::string& user) const {
        RunFacts facts;
        facts.user = user;
        fs::create_directories(PathOf(folder + name));
        WriteRunFacts(folder + name + "/run.json", facts);
    }

    std::vector<std::string> Found() {
        std::vector<std::string> texts;
        for (const RunFolder& run : FindRuns(folder, problems))
            texts.push_back(run.name + " " + run.facts.user);
        return texts;
    }

    TestSupport::TemporaryDirectory directory;
    const std::string folder = directory.Path() + "/";
    ProblemList problems;
};

TEST_F(FoundRunsTest, AreThoseBelowTheFolderAtAnyDepth) {
    MakeRun("runs/chunk-0002/1", "c");
    MakeRun("runs/chunk-0001/2", "b");
    MakeRun("runs/a/b/c/d/Lauf ü", "a");
    MakeRun("surplus/chunk-0001/3", "not this");
    fs::create_directories(folder + "runs/empty");
    EXPECT_THAT(Found(),
                ElementsAre("runs/a/b/c/d/Lauf ü a", "runs/chunk-0001/2 b", "runs/chunk-0002/1 c"));
    EXPECT_EQ(problems.Count(Severity::Error), 0u);
}

TEST_F(FoundRunsTest, WithoutAFolderThereAreNone) {
    EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(FoundRunsTest, FactsThatCannotBeReadAreTold) {
    MakeRun("runs/1", "a");
    fs::create_directories(folder + "runs/2");
    directory.Create("runs/2/run.json", "{}");
    EXPECT_THAT(Found(), ElementsAre("runs/1 a"));
    ASSERT_EQ(problems.InOrder().size(), 1u);
    EXPECT_EQ(problems.InOrder()[0].text,
              "the facts of the run runs/2 cannot be used: the key \"format\" is missing; move the "
              "run away from those of the chunks");
}

TEST_F(FoundRunsTest, LinksAreNotFollowed) {
    MakeRun("runs/1", "a");
    MakeRun("elsewhere/2", "b");
    fs::create_directories(folder + "runs/3");
    std::error_code error;
    fs::create_directory_symlink(folder + "elsewhere", folder + "runs/link", error);
    if (!error)
        fs::create_symlink(folder + "runs/1/run.json", folder + "runs/3/run.json", error);
    if (error)
        GTEST_SKIP() << "no links can be made here: " << error.message();
    EXPECT_THAT(Found(), ElementsAre("runs/1 a"));
}

TEST_F(FoundRunsTest, AFolderOfThatNameIsNoRun) {
    fs::create_directories(folder + "runs/1/run.json");
    EXPECT_THAT(Found(), IsEmpty());
}

TEST_F(FoundRunsTest, LinesOfARunThatIsNotCompleteAreTheWholeEntriesOfItsJournal) {
    MakeRun("runs/1", "a");
    const auto linesDone = [this] {
        return FoundRunOf(folder, FindRuns(folder, problems).at(0)).linesDone;
    };
    EXPECT_EQ(linesDone(), 0u);
    const std::string entry = LineOf(JournalEntry{.line = 2, .csvEnd = 5});
    directory.Create("runs/1/journal.jsonl", entry);
    EXPECT_EQ(linesDone(), 1u);
    directory.Create("runs/1/journal.jsonl",
                     entry + LineOf(JournalEntry{.line = 3, .csvEnd = 9}) + entry.substr(0, 9));
    EXPECT_EQ(linesDone(), 2u);
    directory.Create("runs/1/journal.jsonl", entry + "damaged\n" + entry);
    EXPECT_EQ(linesDone(), 1u);
}

TEST_F(FoundRunsTest, ARunIsChosenByItsFacts) {
    RunFolder run{"runs/1", {}};
    run.facts.testFile = {"C:\\farm\\chunk-0001.csv", "aa"};
    run.facts.outcome = "complete";
    run.facts.linesDone = 7;
    const FoundRun found = FoundRunOf(folder, run);
    EXPECT_EQ(found.directory, "runs/1");
    EXPECT_EQ(found.testFile, "chunk-0001.csv");
    EXPECT_EQ(found.sha256, "aa");
    EXPECT_TRUE(found.isComplete);
    EXPECT_EQ(found.linesDone, 7u);
    run.facts.testFile.name = "/farm/plan.csv";
    EXPECT_EQ(FoundRunOf(folder, run).testFile, "plan.csv");
    run.facts.isMerged = true;
    EXPECT_FALSE(FoundRunOf(folder, run).isComplete);
    run.facts.isMerged = false;
    run.facts.outcome = "interrupted";
    EXPECT_FALSE(FoundRunOf(folder, run).isComplete);
}

} // namespace
} // namespace Bench
