#include "Tools/SarvexTool/Bench/Files/ChunkRows.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "tests/Support/Files.h"

#include <gtest/gtest.h>

namespace Bench {
namespace {

const std::string titles = ",Chain-A Power, Chain B Power";

/// A run of a chunk of two lines, as the client has written it on some system.
class ChunkRowsTest : public testing::Test {
protected:
    ChunkRowsTest() { WriteRun("\n"); }

    void WriteRun(const std::string& lineEnd) {
        m_rows = "Band,Chains" + titles + lineEnd;
        m_journal.clear();
        AddRow(2, "5,A,12.5,NA" + lineEnd);
        AddRow(3, "6,B,NA,-1" + lineEnd);
    }

    void AddRow(LineNumber line, const std::string& row) {
        m_rows += row;
        m_journal += LineOf(JournalEntry{
            .line = line, .outcome = {{}, {}, true}, .csvEnd = m_rows.size(), .seconds = 0.5});
    }

    /// The powers of so many rows, each on a line of its own, or what is wrong: FILE:LINE TEXT.
    std::string Read(std::size_t rows = 2) {
        m_directory.Create("result.csv", m_rows);
        m_directory.Create("journal.jsonl", m_journal);
        std::string text;
        try {
            ChunkRows reader(m_directory.Path(), m_directory.Path("chunk.csv"));
            for (ChunkRow row; rows > 0; --rows) {
                reader.Read(row);
                text += row.powers + "\n";
            }
        } catch (const BadInput& bad) {
            text += bad.File().substr(bad.File().find_last_of("/\\") + 1) + ":" +
                    std::to_string(bad.Problems().front().line) + " " + bad.Problems().front().text;
        }
        return text;
    }

    TestSupport::TemporaryDirectory m_directory;
    const std::string m_chunk = m_directory.Create("chunk.csv", "Band,Chains\n5,A\n6,B\n");
    std::string m_rows;
    std::string m_journal;
};

const std::string changed = "the row does not end where the journal says; the file was changed "
                            "after the run";
const std::string missing = "the row is missing or cut off, although the journal has its line; the "
                            "file was changed after the run";

TEST_F(ChunkRowsTest, PowersAreWhatIsAfterTheLine) {
    EXPECT_EQ(Read(), ",12.5,NA\n,NA,-1\n");
}

TEST_F(ChunkRowsTest, ARunOfAnotherSystemIsReadAlike) {
    WriteRun("\r\n");
    EXPECT_EQ(Read(), ",12.5,NA\n,NA,-1\n");
}

TEST_F(ChunkRowsTest, TheRestOfARunThatStillGoesOnIsNotLookedAt) {
    m_rows += "7,";
    m_journal += "{\"line\":4,";
    EXPECT_EQ(Read(), ",12.5,NA\n,NA,-1\n");
    EXPECT_EQ(Read(1), ",12.5,NA\n");
}

TEST_F(ChunkRowsTest, WhereverTheLastRowIsTornItIsTold) {
    const std::string whole = m_rows;
    for (std::size_t size = whole.find("6,B"); size < whole.size(); ++size) {
        SCOPED_TRACE(size);
        m_rows = whole.substr(0, size);
        EXPECT_EQ(Read(), ",12.5,NA\nresult.csv:3 " + missing);
    }
    m_rows.clear();
    EXPECT_EQ(Read(), "result.csv:1 " + missing);
}

TEST_F(ChunkRowsTest, RowThatIsNotThatOfItsLineIsTold) {
    const std::string rest = "6,B,NA,-1\n";
    const std::string whole = m_rows;
    const auto changedTo = [&](const std::string& row) {
        m_rows = whole;
        m_rows.replace(m_rows.find("5,A,12.5,NA"), 11, row);
        return Read(1);
    };
    const std::string notTheLine =
        "result.csv:2 the row is not the chunk's line with two powers after it";
    EXPECT_EQ(changedTo("6,A,12.5,NA"), notTheLine);
    EXPECT_EQ(changedTo("5,A,12.5-NA"), notTheLine);
    EXPECT_EQ(changedTo("5,A,1,2.,NA"), notTheLine);
    EXPECT_EQ(changedTo("5,A 12.5,NA"), notTheLine);
    EXPECT_EQ(changedTo("5,A,12.50,NA"), "result.csv:2 " + changed);
    EXPECT_EQ(changedTo("5,A\n,2.5,NA"), "result.csv:2 " + changed);
}

TEST_F(ChunkRowsTest, HeaderOfAnotherFileIsTold) {
    m_rows.replace(0, 4, "Rate");
    EXPECT_EQ(Read(), "result.csv:1 the line is not the chunk's header with the titles of the "
                      "powers after it");
}

TEST_F(ChunkRowsTest, JournalThatEndsTooEarlyIsTold) {
    m_journal = m_journal.substr(0, m_journal.find('\n') + 1);
    EXPECT_EQ(Read(), ",12.5,NA\njournal.jsonl:2 the journal ends here, before the run's last "
                      "line");
}

TEST_F(ChunkRowsTest, RowOfNoLineIsTold) {
    AddRow(4, "7,A,1,NA\n");
    EXPECT_EQ(Read(3), ",12.5,NA\n,NA,-1\nresult.csv:4 the row is of no line of the chunk");
}

TEST_F(ChunkRowsTest, MissingFilesAreTold) {
    EXPECT_THROW(ChunkRows(m_directory.Path("none"), m_chunk), BadInput);
    m_directory.Create("journal.jsonl", "");
    EXPECT_THROW(ChunkRows(m_directory.Path(), m_chunk), BadInput) << "no result.csv";
    m_directory.Create("result.csv", "");
    EXPECT_THROW(ChunkRows(m_directory.Path(), m_directory.Path("none")), BadInput);
}

} // namespace
} // namespace Bench
