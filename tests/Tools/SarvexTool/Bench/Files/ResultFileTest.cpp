#include "Tools/SarvexTool/Bench/Files/ResultFile.h"
#include "tests/Support/Files.h"
#include "tests/Tools/SarvexTool/Bench/Core/CoreFixture.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <sstream>

namespace Bench {
namespace {

/// The settings and powers of a result, line by line; or what is wrong with it.
std::string Read(std::string_view bytes, JournalReader* pJournal = nullptr) {
    TextPool texts;
    try {
        const RunResult run = ParseResult(bytes, "result.csv", texts, pJournal);
        std::string text;
        for (const Configuration& configuration : run.configurations) {
            text += std::to_string(configuration.line) + ":";
            for (const std::string* value : configuration.settings)
                text += value == nullptr ? "" : " " + *value;
            text += "\n";
        }
        return text + Describe(run);
    } catch (const BadInput& bad) {
        std::string text;
        for (const Problem& problem : bad.Problems())
            text += std::to_string(problem.line) + ":" + std::to_string(problem.column) + " " +
                    problem.text + "\n";
        return text;
    }
}

TEST(ResultFileTest, RowsAreTheClientsLinesAndTwoPowers) {
    EXPECT_EQ(Read("Channel,Band,Chains,Chain-A Power, Chain B Power\n"
                   "36,5,A,12.5,NA\n"
                   "-, 6 ,-,12.,NA\n"
                   "40,-,B,NA,-0.5\n"),
              "2: 5 A 36\n3: 6 A 36\n4: 6 B 40\n"
              "2 A 12.5\n3 A 12\n4 B -0.5\n");
}

TEST(ResultFileTest, OddLinesDoNotShiftThePowers) {
    EXPECT_EQ(Read("Band,Chains,Channel,Chain-A Power, Chain B Power\n"
                   "5,A,36,9,NA\n"
                   "5,A,1,NA\n"
                   "5,,A,2,NA\n"
                   "5,A,36,40,50,3,NA\n"
                   ",NA,NA\n"
                   "5,A,,4,NA\n"),
              "2: 5 A 36\n3: 5 A 36\n4: 5 A 36\n5: 5 A 36\n6: 5 A 36\n7: 5 A 36\n"
              "2 A 9\n3 A 1\n4 A 2\n5 A 3\n6 A no power was reported\n7 A 4\n")
        << "a short line, an empty cell, too many cells, an empty line, a comma at the end";
}

TEST(ResultFileTest, LineEndsOfBothSystemsAreRead) {
    EXPECT_EQ(Read("Band,Chains,Chain-A Power, Chain B Power\r\n5,A,1,NA\r\n6,-,2,NA\r\n"),
              "2: 5 A\n3: 6 A\n2 A 1\n3 A 2\n");
    // A file with CR LF, run on Linux: the client keeps the CR before the powers.
    EXPECT_EQ(Read("Band,Chains\r,Chain-A Power, Chain B Power\n5,A\r,1,NA\n"), "2: 5 A\n2 A 1\n");
}

TEST(ResultFileTest, ALastLineWithoutItsEndMayBeCutOff) {
    const char* const cut = "the last line has no end, so that its power may be cut off; copy the "
                            "file again, or run the test again\n";
    // The power was 17.86.
    EXPECT_EQ(Read("Band,Chains,Chain-A Power, Chain B Power\n5,A,17.9,NA\n5,B,NA,17."),
              std::string("3:0 ") + cut);
    EXPECT_EQ(Read("Band,Chains,Chain-A Power, Chain B Power\n5"), std::string("2:0 ") + cut);
}

TEST(ResultFileTest, RepeatedColumnTakesTheLaterPlace) {
    EXPECT_EQ(Read("Band,Band,Chains,Chain-A Power, Chain B Power\n5,6,A,1,NA\n"),
              "2: 6 A\n2 A 1\n");
}

TEST(ResultFileTest, HeaderWithoutColumnsMakesUnknownSettings) {
    EXPECT_EQ(Read(",Chain-A Power, Chain B Power\n5,1,2\n,NA,NA\n"),
              "2:\n3:\n2 A 1\n2 B 2\n3 ? no power was reported\n");
}

TEST(ResultFileTest, ResultWithoutHeaderIsRefused) {
    const char* const missing =
        "1:0 the header is missing: it ends in \",Chain-A Power, Chain B Power\"; the client "
        "writes none when the test file has an unknown column, so check the test file and run it "
        "again\n";
    EXPECT_EQ(Read("5,A,1,NA\n6,A,1,NA\n"), missing);
    // A test file that was taken for its result.
    EXPECT_EQ(Read("Band,Chains,Rate\n5,A,MCS0\n"), missing);
    EXPECT_EQ(Read("\n"), missing);
}

TEST(ResultFileTest, AFileThatASpreadsheetHasSavedIsToldAsSuch) {
    using namespace std::string_view_literals;
    for (const std::string_view bytes : {"Band;Chain-A Power; Chain B Power\r\n5;1;NA\r\n"sv,
                                         "Band,Chain-A Power,Chain B Power\n"sv,
                                         "Band,Chain-A Power, Chain B Power,,\n5,1,NA,,\n"sv,
                                         "\xFF\xFE"
                                         "B\0a\0n\0d\0"sv}) {
        SCOPED_TRACE(bytes);
        EXPECT_EQ(Read(bytes),
                  "1:0 the header was changed after the run, perhaps by a spreadsheet that has "
                  "saved the file; take the file as the client has written it\n");
    }
}

TEST(ResultFileTest, AnEmptyFileIsOnlyThat) {
    EXPECT_EQ(Read(""),
              "1:0 the file is empty: the run could not open its test file, was ended, or "
              "goes on; run the test again\n");
}

TEST(ResultFileTest, ResultWithoutAMeasurementIsRefused) {
    EXPECT_EQ(Read("Band,Chain-A Power, Chain B Power\n"),
              "1:0 there is no measurement, because the run ended before its first line; run the "
              "test again\n");
}

TEST(ResultFileTest, EverythingWrongIsToldWithItsPlace) {
    EXPECT_EQ(Read("Band,Chanel,Chain-A Power, Chain B Power\n"
                   "5,A,1,NA\n"
                   "5,A,17..5,+1\n"
                   "\n"
                   "NA\n"
                   "5,A,na,\n"
                   "5,A,1234567890,NA\n"),
              "1:2 there is no column \"Chanel\"; the header was changed after the run\n"
              "3:3 \"17..5\" is no power: it is neither NA nor a decimal number; run the line "
              "again\n"
              "3:4 \"+1\" is no power: it is neither NA nor a decimal number; run the line again\n"
              "4:0 the line does not end in two powers; the file was changed after the run, or is "
              "not whole\n"
              "5:0 the line does not end in two powers; the file was changed after the run, or is "
              "not whole\n"
              "6:3 \"na\" is no power: it is neither NA nor a decimal number; run the line again\n"
              "6:4 \"\" is no power: it is neither NA nor a decimal number; run the line again\n"
              "7:3 \"1234567890\" is no power: it has too many digits; run the line again\n");
}

/// The same of a run with a journal.
std::string ReadWith(const std::string& journal, std::string_view bytes) {
    std::istringstream stream(journal);
    JournalReader reader(stream, "journal.jsonl");
    return Read(bytes, &reader);
}

TEST(ResultFileTest, ARunWithoutAFinishedLineCanGoOn) {
    EXPECT_EQ(ReadWith("", ""),
              "1:0 the file is empty: no line of the run is finished; go on with it: "
              "SarvexToolBench run --resume\n");
    EXPECT_EQ(
        ReadWith("", "Band,Chain-A Power, Chain B Power\n"),
        "1:0 there is no measurement, because the run ended before its first line; go on with "
        "it: SarvexToolBench run --resume\n");
}

/// An entry of a journal whose line was refused, or gave a power on chain A.
std::string EntryOf(LineNumber line, std::size_t csvEnd, bool isRefused = false) {
    return "{\"line\":" + std::to_string(line) +
           (isRefused ? R"(,"accepted":false,"a":{"outcome":"refused","text":"No."})"
                      : R"(,"accepted":true,"a":{"outcome":"measured"})") +
           R"(,"b":{"outcome":"chain not active"},"csvEnd":)" + std::to_string(csvEnd) +
           R"(,"started":"2026-11-22T07:30:00Z","seconds":1})"
           "\n";
}

class JournalledResultTest : public testing::Test {
protected:
    std::string header = "Band,Chains,Chain-A Power, Chain B Power\n";
    std::size_t start = header.size();
};

TEST_F(JournalledResultTest, JournalTellsWhyAPowerIsMissing) {
    EXPECT_EQ(
        ReadWith(EntryOf(2, start + 9) + EntryOf(3, start + 18, true) + EntryOf(4, start + 27),
                 header + "5,A,1,NA\n6,-,NA,NA\n-,-,3,NA\n"),
        "3:0 the row does not end where the journal says; the file was changed after the "
        "run\n");
    EXPECT_EQ(
        ReadWith(EntryOf(2, start + 9) + EntryOf(3, start + 19, true) + EntryOf(4, start + 28),
                 header + "5,A,1,NA\n6,-,NA,NA\n-,-,3,NA\n"),
        "2: 5 A\n3: 6 A\n4: 6 A\n"
        "2 A 1\n3 A the daemon refused the line: No.\n4 A Band is uncertain since line 3\n");
}

TEST_F(JournalledResultTest, RowsOfUnfinishedLinesDoNotCount) {
    const std::string entry = EntryOf(2, start + 9);
    const std::string first = "2: 5 A\n2 A 1\n";
    EXPECT_EQ(ReadWith(entry, header + "5,A,1,NA\n6,A,2,NA\n"), first);
    EXPECT_EQ(ReadWith(entry, header + "5,A,1,NA\n6,A,2."), first) << "torn";
    EXPECT_EQ(
        ReadWith(entry + EntryOf(3, start + 18).substr(0, 20), header + "5,A,1,NA\n6,A,2,NA\n"),
        first)
        << "a torn entry";
    EXPECT_EQ(ReadWith("", header + "5,A,1,NA\n"),
              "1:0 there is no measurement, because the run ended before its first line; go on "
              "with it: SarvexToolBench run --resume\n");
}

TEST_F(JournalledResultTest, RowsThatAreNotTheJournalsAreTold) {
    const std::string entries = EntryOf(2, start + 9) + EntryOf(3, start + 18);
    EXPECT_EQ(ReadWith(entries, header + "5,A,1,NA\n"),
              "3:0 the row is missing, although the journal has its line; the file was changed "
              "after the run\n");
    for (const std::string& rows : {std::string(), header})
        EXPECT_EQ(ReadWith(entries, rows),
                  "2:0 the row is missing, although the journal has its line; the file was changed "
                  "after the run\n");
    EXPECT_EQ(ReadWith(entries, header + "5,A,1.5,NA\n6,A,2,NA\n"),
              "2:0 the row does not end where the journal says; the file was changed after the "
              "run\n");
    EXPECT_EQ(ReadWith(entries, header + "5,A,1,NA\n6,A,2,NA"),
              "3:0 the last line has no end, so that its power may be cut off; copy the file "
              "again, or run the test again\n");
}

TEST_F(JournalledResultTest, JournalThatCannotBeReadIsToldWithItsLine) {
    std::istringstream stream(EntryOf(2, start + 9) + "{\"line\":3,\x1B]\n" +
                              EntryOf(4, start + 18));
    JournalReader reader(stream, "journal.jsonl");
    TextPool texts;
    try {
        ParseResult(header + "5,A,1,NA\n6,A,2,NA\n", "result.csv", texts, &reader);
        FAIL() << "nothing was thrown";
    } catch (const BadInput& bad) {
        EXPECT_EQ(bad.File(), "journal.jsonl");
        EXPECT_EQ(bad.Problems().at(0).line, 2U);
    }
}

class ResultFileNamesTest : public testing::Test {
protected:
    void SetUp() override {
        directory.Create("result.csv", "Band,Chain-A Power, Chain B Power\n5,1,NA\n");
        directory.Create("result.xml", "<PowerTable MCC=\"DE\"/>");
    }

    Result Read(const std::string& name) {
        std::istringstream in("Band,Chain-A Power, Chain B Power\n6,2,NA\n");
        return ReadResult(NamesOf(name), in, texts);
    }

    std::string ReadBytesOf(const std::string& name) const {
        return TestSupport::ReadBytes(directory.Path(name));
    }

    TestSupport::TemporaryDirectory directory;
    TextPool texts;
};

TEST_F(ResultFileNamesTest, FolderStandsForItsResult) {
    for (const std::string& name : {directory.Path(), directory.Path("result.csv")}) {
        const Result result = Read(name);
        EXPECT_EQ(Describe(result.run), "2 A 1\n");
        EXPECT_EQ(result.device.countryCode, "DE");
    }
}

TEST_F(ResultFileNamesTest, BothFilesAreInputs) {
    EXPECT_EQ(
        NamesOf(directory.Path("result.csv")).All(),
        (std::vector<std::string>{directory.Path("result.csv"), directory.Path("result.xml")}));
    EXPECT_EQ(NamesOf("-").All(), std::vector<std::string>{"-"});
    EXPECT_EQ(NamesOf("result.csv").All(), (std::vector<std::string>{"result.csv", "result.xml"}));
}

TEST_F(ResultFileNamesTest, StandardInputHasNoTree) {
    const Result result = Read("-");
    EXPECT_EQ(Describe(result.run), "2 A 2\n");
    EXPECT_EQ(result.device.whyUnknown, "standard input has no result.xml");
}

TEST_F(ResultFileNamesTest, JournalBesideTheResultIsRead) {
    const std::string table = ReadBytesOf("result.csv");
    directory.Create("journal.jsonl", EntryOf(2, table.size(), true));
    for (const std::string& name : {directory.Path(), directory.Path("result.csv")}) {
        const Result result = Read(name);
        EXPECT_EQ(Describe(result.run), "2 A the daemon refused the line: No.\n");
        EXPECT_EQ(result.run.earlyEnd, (EarlyEnd{1, std::nullopt})) << "run.json is missing";
    }
    directory.Create("run.json", "{\"linesTotal\":1}");
    EXPECT_EQ(Read(directory.Path()).run.earlyEnd, std::nullopt);
    EXPECT_EQ(
        NamesOf(directory.Path("result.csv")).All(),
        (std::vector<std::string>{directory.Path("result.csv"), directory.Path("result.xml"),
                                  directory.Path("journal.jsonl"), directory.Path("run.json")}));
}

TEST_F(ResultFileNamesTest, LinesThatWereNotRunDoNotCountAsRun) {
    const std::string header = "Band,Chain-A Power, Chain B Power\n";
    directory.Create("result.csv", header + "5,1,NA\n6,NA,NA\n");
    JournalEntry entry{.line = 2, .outcome = {{}, {}, true}, .csvEnd = header.size() + 7};
    std::string journal = LineOf(entry);
    entry = {.line = 3,
             .outcome = {{Outcome::NotRun, ""}, {Outcome::NotRun, ""}, false},
             .csvEnd = header.size() + 15};
    directory.Create("journal.jsonl", journal + LineOf(entry));
    directory.Create("run.json", "{\"linesTotal\":2}");
    const Result result = Read(directory.Path());
    EXPECT_EQ(Describe(result.run), "2 A 1\n3 ? the line was not run\n");
    EXPECT_EQ(result.run.earlyEnd, (EarlyEnd{1, 2}));
}

TEST_F(ResultFileNamesTest, RunOfATestFileWithoutLinesIsToldAsSuch) {
    directory.Create("journal.jsonl", "");
    directory.Create("run.json", R"({"linesTotal":0,"outcome":"complete"})");
    for (const char* table : {"Band,Chain-A Power, Chain B Power\n", ""}) {
        directory.Create("result.csv", table);
        try {
            Read(directory.Path());
            ADD_FAILURE() << table;
        } catch (const BadInput& bad) {
            ASSERT_EQ(bad.Problems().size(), 1u);
            EXPECT_EQ(bad.Problems().front().text,
                      "there is no measurement, because the test file has no lines");
        }
    }
}

TEST_F(ResultFileNamesTest, SourcesOfTheLinesAreRead) {
    directory.Create("journal.jsonl", EntryOf(2, ReadBytesOf("result.csv").size(), true));
    directory.Create("run.json", R"({"linesTotal":1,"bench":"seven"})");
    EXPECT_EQ(Read(directory.Path()).run.sources.PlaceOf(2)->bench, "seven");
    directory.Create("run.json",
                     R"({"linesTotal":1,"sources":[{"firstLine":2,"lastLine":2,"attempt":3}]})");
    EXPECT_EQ(Read(directory.Path()).run.sources.PlaceOf(2)->attempt, 3U);
}

TEST_F(ResultFileNamesTest, JournalIsNotThatOfAnotherFileBesideIt) {
    directory.Create("journal.jsonl", "anything");
    directory.Create("other.csv", ReadBytesOf("result.csv"));
    const Result result = Read(directory.Path("other.csv"));
    EXPECT_EQ(Describe(result.run), "2 A 1\n");
    EXPECT_EQ(result.run.earlyEnd, std::nullopt);
    EXPECT_EQ(Read("-").run.earlyEnd, std::nullopt);
}

TEST_F(ResultFileNamesTest, JournalThatIsNoFileIsTold) {
    std::filesystem::create_directory(directory.Path("journal.jsonl"));
    EXPECT_THROW(Read(directory.Path()), BadInput);
}

} // namespace
} // namespace Bench
