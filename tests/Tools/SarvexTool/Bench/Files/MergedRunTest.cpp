#include "Tools/SarvexTool/Bench/Files/MergedRun.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/FileNames.h"
#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <filesystem>
#include <iterator>

namespace Bench {
namespace {

namespace fs = std::filesystem;
using testing::ElementsAre;
using testing::HasSubstr;

class MergedRunTest : public testing::Test {
protected:
    std::string Name(const std::string& file) const { return m_place + "/" + file; }
    /// As a text of this system.
    std::string Text(const std::string& file) const {
        std::ifstream stream(Name(file));
        return {std::istreambuf_iterator<char>(stream), {}};
    }

    TestSupport::TemporaryDirectory m_directory;
    const std::string m_plan = m_directory.Create("plan.csv", "Band,Chains\r\n5,A\n\n");
    const std::string m_place = m_directory.Path("whole");
};

TEST_F(MergedRunTest, HoldsThePlanItsRowsAndTheirJournal) {
    JournalEntry entry{.line = 2, .outcome = {{}, {}, true}, .csvEnd = 99, .seconds = 0.5};
    entry.isExplicit = true;
    {
        MergedRun run(m_place, m_plan, {});
        run.AddHeader("Band,Chains");
        run.Add("5,A,1,NA", entry);
        entry.line = 3;
        run.Add(",NA,NA", entry);
        run.Finish("DE");
        EXPECT_FALSE(fs::exists(m_place));
        run.Commit(RunFacts());
    }
    EXPECT_EQ(TestSupport::ReadBytes(Name("test-file.csv")), TestSupport::ReadBytes(m_plan));
    EXPECT_EQ(Text("result.csv"), "Band,Chains,Chain-A Power, Chain B Power\n5,A,1,NA\n,NA,NA\n");
    EXPECT_THAT(Text("result.xml"), HasSubstr("<PowerTable MCC=\"DE\""));
    EXPECT_THAT(Text("result.xml"), HasSubstr("<chainA "));
    EXPECT_EQ(ReadRunFacts(Name("run.json")), RunFacts());
    const std::vector<JournalEntry> entries = ReadJournal(Name("journal.jsonl"));
    ASSERT_EQ(entries.size(), 2u);
    EXPECT_EQ(entries[0].line, 2u);
    EXPECT_TRUE(entries[0].isExplicit);
    const std::string bytes = TestSupport::ReadBytes(Name("result.csv"));
    EXPECT_EQ(entries[0].csvEnd, bytes.find(",NA,NA"));
    EXPECT_EQ(entries[1].csvEnd, bytes.size());
    std::vector<std::string> names;
    for (const fs::directory_entry& file : fs::directory_iterator(m_place))
        names.push_back(file.path().filename().string());
    EXPECT_THAT(names, testing::UnorderedElementsAre("test-file.csv", "result.csv", "result.xml",
                                                     "journal.jsonl", "run.json"));
}

TEST_F(MergedRunTest, OfAnUnknownColumnThereIsNoHeader) {
    MergedRun run(m_place, m_plan, {});
    run.AddHeader("Band,Chanel");
    run.Add("5,A,1,NA", JournalEntry{.line = 2});
    run.Finish("-");
    run.Commit(RunFacts());
    EXPECT_EQ(Text("result.csv"), "5,A,1,NA\n");
    EXPECT_EQ(ReadJournal(Name("journal.jsonl"))[0].csvEnd,
              TestSupport::ReadBytes(Name("result.csv")).size());
}

TEST_F(MergedRunTest, WithoutItsEndNothingIsLeft) {
    {
        MergedRun run(m_place, m_plan, {});
        run.AddHeader("Band,Chains");
        run.Add("5,A,1,NA", JournalEntry{.line = 2});
        run.Finish("DE");
    }
    EXPECT_FALSE(fs::exists(m_place));
    EXPECT_FALSE(fs::exists(m_place + ".part"));
}

TEST_F(MergedRunTest, AMissingPlanIsTold) {
    EXPECT_THROW(MergedRun(m_place, m_directory.Path("none"), {}), BadInput);
    EXPECT_FALSE(fs::exists(m_place + ".part"));
}

} // namespace
} // namespace Bench
