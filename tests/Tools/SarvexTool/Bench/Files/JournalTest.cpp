#include "Tools/SarvexTool/Bench/Files/Journal.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "tests/Support/Files.h"

#include <gmock/gmock.h>

#include <sstream>
#include <string>
#include <vector>

namespace Bench {
namespace {

using OSAL::DurableFile;
using testing::ElementsAre;
using testing::IsEmpty;

const JournalEntry first{.line = 2,
                         .outcome = {.a = {Outcome::Measured, ""},
                                     .b = {Outcome::Refused, "Grüße \xFC\n"},
                                     .isAccepted = true},
                         .csvEnd = 120,
                         .started = "2026-03-09T08:05:00.007Z",
                         .seconds = 1.25};
const JournalEntry second{
    .line = 3,
    .outcome = {.a = {Outcome::TimedOut, ""}, .b = {Outcome::OtherConfiguration, "Band 6"}},
    .csvEnd = 150,
    .started = "2026-03-09T08:05:01.300Z",
    .seconds = 0};

class JournalTest : public testing::Test {
protected:
    JournalTest() {
        Journal journal(DurableFile(path, DurableFile::Opening::New));
        journal.Append(first);
        journal.Append(second);
    }

    std::string Bytes() const { return TestSupport::ReadBytes(path); }

    /// Reads a journal of these bytes; the entries and where they end.
    static std::vector<JournalEntry> Read(const std::string& bytes, std::uint64_t& end) {
        std::istringstream stream(bytes);
        JournalReader reader(stream, "journal");
        std::vector<JournalEntry> entries;
        for (JournalEntry entry; reader.Read(entry);)
            entries.push_back(entry);
        end = reader.End();
        return entries;
    }

    /// The line and the text of the problem of these bytes.
    static std::string ProblemOf(const std::string& bytes) {
        std::uint64_t end = 0;
        try {
            Read(bytes, end);
        } catch (const BadInput& bad) {
            EXPECT_EQ(bad.File(), "journal");
            return std::to_string(bad.Problems().at(0).line) + ": " + bad.Problems().at(0).text;
        }
        return "none";
    }

    TestSupport::TemporaryDirectory directory;
    const std::string path = directory.Path("journal.jsonl");
};

TEST_F(JournalTest, EachEntryIsALineOfJson) {
    EXPECT_EQ(Bytes().substr(0, Bytes().find('\n') + 1),
              "{\"line\":2,\"accepted\":true,\"a\":{\"outcome\":\"measured\"},"
              "\"b\":{\"outcome\":\"refused\",\"textBase64\":\"R3LDvMOfZSD8Cg==\"},"
              "\"csvEnd\":120,\"started\":\"2026-03-09T08:05:00.007Z\",\"seconds\":1.25}\n");
}

TEST_F(JournalTest, ALineThatWasSentWholeIsMarked) {
    JournalEntry whole = first;
    whole.isExplicit = true;
    const std::string text = LineOf(whole);
    EXPECT_THAT(text, testing::EndsWith(",\"seconds\":1.25,\"explicit\":true}\n"));
    std::uint64_t end = 0;
    EXPECT_THAT(Read(text, end), ElementsAre(whole));
}

TEST_F(JournalTest, EntriesComeBackAsTheyWere) {
    EXPECT_THAT(ReadJournal(path), ElementsAre(first, second));
}

TEST_F(JournalTest, AJournalGoesOnAtItsEnd) {
    JournalEntry third = second;
    third.line = 4;
    third.csvEnd = 151;
    Journal(DurableFile(path, DurableFile::Opening::Existing)).Append(third);
    EXPECT_THAT(ReadJournal(path), ElementsAre(first, second, third));
}

TEST_F(JournalTest, AnEmptyJournalHasNoEntry) {
    std::uint64_t end = 1;
    EXPECT_THAT(Read("", end), IsEmpty());
    EXPECT_EQ(end, 0u);
}

TEST_F(JournalTest, WhereverTheLastLineIsTornItIsCutOff) {
    const std::string bytes = Bytes();
    const std::size_t firstEnd = bytes.find('\n') + 1;
    for (std::size_t size = firstEnd; size < bytes.size(); ++size) {
        SCOPED_TRACE(size);
        std::uint64_t end = 0;
        EXPECT_THAT(Read(bytes.substr(0, size), end), ElementsAre(first));
        EXPECT_EQ(end, firstEnd);
    }
}

TEST_F(JournalTest, ALastLineOfAnythingIsCutOff) {
    for (const std::string& garbage :
         {std::string("\n"), std::string("x\n"), std::string("{}\n"), std::string(100, '\0'),
          std::string(100, '\0') + "\n", Bytes().substr(0, Bytes().find('\n') + 1)}) {
        SCOPED_TRACE(garbage);
        std::uint64_t end = 0;
        EXPECT_THAT(Read(Bytes() + garbage, end), ElementsAre(first, second));
        EXPECT_EQ(end, Bytes().size());
    }
}

TEST_F(JournalTest, GarbageInTheMiddleIsToldWithItsLine) {
    const std::string line = Bytes().substr(0, Bytes().find('\n') + 1);
    EXPECT_EQ(ProblemOf("x\n" + line), "1: there is no object of JSON");
    EXPECT_EQ(ProblemOf(line + "{}\n" + line), "2: the key \"line\" is missing");
    EXPECT_EQ(ProblemOf(line + line + "x"), "2: line 3 of the test file is missing");
    EXPECT_EQ(ProblemOf(Bytes().substr(line.size()) + "x"),
              "1: line 2 of the test file is missing");
    std::string other = Bytes().substr(line.size());
    other.replace(other.find("150"), 3, "120");
    EXPECT_EQ(ProblemOf(line + other + "x"), "2: the row has no place of its own in result.csv");
    std::string unknown = line;
    unknown.replace(unknown.find("measured"), 8, "guessed");
    EXPECT_EQ(ProblemOf(unknown + "x"), "1: there is no outcome \"guessed\"");
}

TEST_F(JournalTest, AMissingJournalIsTold) {
    EXPECT_THROW(ReadJournal(directory.Path("none")), BadInput);
}

} // namespace
} // namespace Bench
