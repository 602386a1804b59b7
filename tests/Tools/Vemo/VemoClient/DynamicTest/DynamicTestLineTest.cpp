#include "tests/Modules/xFramework/Utilities/LogRecorder.h"
#include "tests/Tools/Vemo/VemoClient/DynamicTest/DynamicTestFixture.h"

#include <algorithm>
#include <streambuf>

// The header and one line on its way to the daemon and into result.csv.

namespace {

using OSAL::Fake::CountCalls;
using OSAL::Fake::TheWorld;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DynamicTestLineTest : public DynamicTestFixture {
protected:
    void ProcessHeader(const std::string& header) {
        test.ProcessHeaderTestFile(csv, header);
        csv.str("");
    }
    /// The header and the line, without what the header writes; the commands that were sent.
    std::vector<std::string> Process(const std::string& header, const std::string& line) {
        ProcessHeader(header);
        TheWorld().sent.clear();
        test.ProcessLineTestFile(csv, line);
        return Commands();
    }

    DynamicTest test{"test.csv"};
    std::ostringstream csv;
};

TEST_F(DynamicTestLineTest, HeaderIsCopiedAsReadWithTheTwoPowerTitles) {
    for (const char* header :
         {"Band,Chains", " Band , Chains ", "", "Band,,Chains,", "Large RU Size\r"}) {
        SCOPED_TRACE(header);
        csv.str("");
        test.ProcessHeaderTestFile(csv, header);
        EXPECT_EQ(csv.str(), std::string(header) + ",Chain-A Power, Chain B Power\n");
    }
    EXPECT_EQ(console.Err(), "");
}

/// Keeps what it is given, piece by piece.
class PieceRecorder : public std::streambuf {
public:
    std::vector<std::string> pieces;

protected:
    std::streamsize xsputn(const char* text, std::streamsize size) override {
        pieces.emplace_back(text, static_cast<std::size_t>(size));
        return size;
    }
    int_type overflow(int_type character) override {
        pieces.emplace_back(1, traits_type::to_char_type(character));
        return traits_type::not_eof(character);
    }
    int sync() override {
        pieces.emplace_back("(flushed)");
        return 0;
    }
};

TEST_F(DynamicTestLineTest, HeaderAndRowsAreWrittenInOnePieceEachSoThatNoneIsTorn) {
    const std::string cells = "5," + std::string(20'000, 'x');
    PieceRecorder recorder;
    std::ostream file(&recorder);
    test.ProcessHeaderTestFile(file, "Band");
    AnswerLine(PowerA("17.5"));
    test.ProcessLineTestFile(file, cells);
    EXPECT_THAT(recorder.pieces, ElementsAre("Band,Chain-A Power, Chain B Power\n", "(flushed)",
                                             cells + ",17.5,NA\n", "(flushed)"));
}

TEST_F(DynamicTestLineTest, HeaderWithAnUnknownColumnWritesNothingAndSetsNoColumn) {
    test.ProcessHeaderTestFile(csv, "Band,Chains,Power,Chanel");
    EXPECT_EQ(csv.str(), "");
    EXPECT_EQ(console.Err(), "Invalid On-demand Colunm: 'Power'.");
    EXPECT_FALSE(test.IsColumnSet("Band", {"5", "A"}));
}

TEST_F(DynamicTestLineTest, ColumnNamesAreMatchedExactly) {
    for (const char* name : {"band", "Band ", "Specific Resource Unit", "Resource unit", "RU",
                             "\xEF\xBB\xBF"
                             "Band",
                             "-", " "}) {
        SCOPED_TRACE(name);
        EXPECT_FALSE(test.ValidateHeader({"Band", name}));
    }
    EXPECT_TRUE(
        test.ValidateHeader({"Band", "Chains", "Bandwidth", "Channel", "Bandwidth Mode", "Rate",
                             "Mode", "Resource Unit", "Specific Resource unit", "Large RU Size"}));
    EXPECT_TRUE(test.ValidateHeader({}));
}

TEST_F(DynamicTestLineTest, ColumnNameThatLooksLikeAPlaceholderIsNamedAsItIs) {
    EXPECT_FALSE(test.ValidateHeader({"Band", "${1}"}));
    EXPECT_EQ(console.Err(), "Invalid On-demand Colunm: '${1}'.");
}

TEST_F(DynamicTestLineTest, NameGivenTwiceKeepsTheLaterPosition) {
    test.BuildColumnIndex({"Band", "Channel", "Band"});
    EXPECT_EQ(test.GetResultValue("Band", {"5", "36", "6"}), "6");
    EXPECT_FALSE(test.IsColumnSet("Band", {"5", "36"}));
    EXPECT_EQ(test.GetResultValue("Channel", {"5", "36", "6"}), "36");
}

TEST_F(DynamicTestLineTest, EmptyHeaderCellShiftsTheColumnsAfterIt) {
    ProcessHeader("Band,,Channel");
    EXPECT_EQ(test.GetResultValue("Channel", {"5", "36"}), "36");
}

TEST_F(DynamicTestLineTest, LaterHeaderReplacesAnEarlierOne) {
    test.BuildColumnIndex({"Band"});
    test.BuildColumnIndex({"Chains"});
    EXPECT_FALSE(test.IsColumnSet("Band", {"5"}));
    EXPECT_TRUE(test.IsColumnSet("Chains", {"5"}));
}

TEST_F(DynamicTestLineTest, ColumnIsSetWhenItsCellHoldsMoreThanTheMarker) {
    test.BuildColumnIndex({"Band", "Channel"});
    const std::pair<PowerTest::Fields, bool> cases[] = {
        {{"5", "36"}, true}, {{"5"}, false},        {{}, false},         {{"5", "-"}, false},
        {{"5", ""}, false},  {{"5", " - "}, false}, {{"5", "--"}, true}, {{"5", " "}, true},
        {{"5", "\t"}, true}, {{"-", "36"}, true},
    };
    for (const auto& [fields, expected] : cases) {
        SCOPED_TRACE(testing::PrintToString(fields));
        EXPECT_EQ(test.IsColumnSet("Channel", fields), expected);
    }
    EXPECT_FALSE(test.IsColumnSet("Rate", {"5", "36"}));
}

TEST_F(DynamicTestLineTest, OptionsAreSentInTheOrderOfTheTableWhateverTheHeadersOrder) {
    EXPECT_THAT(
        Process("Large RU Size,Specific Resource unit,Resource Unit,Mode,Rate,Bandwidth "
                "Mode,Channel,Bandwidth,Chains,Band",
                "10,9,8,7,6,5,4,3,2,1"),
        ElementsAre("-wifi-band 1 -wifi-tx-chains-from-file 2 -wifi-bandwidth 3 "
                    "-wifi-channel 4 -wifi-bw-mode 5 -wifi-rate 6 -wifi-tx-transm-mode 7 "
                    "-wifi-resource-unit 8 -wifi-specific-resource-unit 9 -wifi-large-ru 10 " +
                        start,
                    stop));
    EXPECT_EQ(console.Out().substr(0, console.Out().find("\n\n")),
              committing + "Band = 1, Chains = 2, Bandwidth = 3, Channel = 4, Bandwidth Mode = 5, "
                           "Rate = 6, Mode = 7, Resource Unit = 8, Specific Resource unit = 9, "
                           "Large RU Size = 10, ");
}

TEST_F(DynamicTestLineTest, LineIsCommittedStartedStoppedAndRecorded) {
    AnswerLine(PowerA("17.5") + PowerB("18"));
    EXPECT_THAT(
        Process("Band,Chains,Channel", "5,AB,36"),
        ElementsAre("-wifi-band 5 -wifi-tx-chains-from-file AB -wifi-channel 36 " + start, stop));
    EXPECT_EQ(csv.str(), "5,AB,36,17.5,18\n");
    EXPECT_EQ(console.Out(), committing + "Band = 5, Chains = AB, Channel = 36, \n" +
                                 PowerA("17.5") + PowerB("18") + "\nStopped.\n\n");
    EXPECT_EQ(console.Err(), "");
}

TEST_F(DynamicTestLineTest, LineThatSetsNothingStillRunsAndWritesARow) {
    for (const char* line : {"-,-", "", ",", " - ,-"}) {
        SCOPED_TRACE(line);
        csv.str("");
        EXPECT_THAT(Process("Band,Chains", line), ElementsAre(start, stop));
        EXPECT_EQ(csv.str(), std::string(line) + ",NA,NA\n");
    }
    EXPECT_EQ(console.Out().substr(0, committing.size() + 1), committing + "\n");
}

TEST_F(DynamicTestLineTest, ColumnBeyondTheEndOfAShortLineIsNotSet) {
    EXPECT_THAT(Process("Band,Chains,Channel", "5,A"),
                ElementsAre("-wifi-band 5 -wifi-tx-chains-from-file A " + start, stop));
}

TEST_F(DynamicTestLineTest, EmptyCellShiftsTheCellsAfterIt) {
    EXPECT_THAT(Process("Band,Chains,Channel", "5,,36"),
                ElementsAre("-wifi-band 5 -wifi-tx-chains-from-file 36 " + start, stop));
    EXPECT_THAT(Process("Band,Chains,Channel", "5,-,36"),
                ElementsAre("-wifi-band 5 -wifi-channel 36 " + start, stop));
}

TEST_F(DynamicTestLineTest, CellOfBlanksIsSentAsItIs) {
    EXPECT_THAT(Process("Band,Chains", " ,  "),
                ElementsAre("-wifi-band \" \" -wifi-tx-chains-from-file \"  \" " + start, stop));
}

TEST_F(DynamicTestLineTest, FieldsBeyondTheHeaderAreIgnoredAndCopied) {
    EXPECT_THAT(Process("Band", "5, more ,${1}"), ElementsAre("-wifi-band 5 " + start, stop));
    EXPECT_EQ(csv.str(), "5, more ,${1},NA,NA\n");
}

TEST_F(DynamicTestLineTest, LineIsCopiedUntouched) {
    for (const char* line : {" 5 ,\tA\t,-", "5,,36,", "5;A", "\"5\",A\r", "\xFF\x85"}) {
        SCOPED_TRACE(line);
        csv.str("");
        Process("Band,Chains", line);
        EXPECT_EQ(csv.str(), std::string(line) + ",NA,NA\n");
    }
}

TEST_F(DynamicTestLineTest, StopIsSentAfterAReplyWithoutPowersToo) {
    Answer("");
    EXPECT_THAT(Process("Band", "5"), ElementsAre("-wifi-band 5 " + start, stop));
    EXPECT_EQ(csv.str(), "5,NA,NA\n");
}

TEST_F(DynamicTestLineTest, PowersAreTakenFromTheStartNotFromTheStop) {
    Answer("nothing\n");
    Answer(PowerA("1"));
    Process("Band", "5");
    EXPECT_EQ(csv.str(), "5,NA,NA\n");
}

TEST_F(DynamicTestLineTest, LineWithoutAConnectionIsRecordedWithoutPowers) {
    TheWorld().connectSucceeds = [](int) { return false; };
    EXPECT_THAT(Process("Band", "5"), IsEmpty());
    EXPECT_EQ(csv.str(), "5,NA,NA\n");
}

TEST_F(DynamicTestLineTest, SuffixHoldsThePowersOfBothChainsOrNa) {
    const std::pair<std::string, const char*> cases[] = {
        {"", ",NA,NA"},
        {PowerA("17.5") + PowerB("18"), ",17.5,18"},
        {PowerB("18") + PowerA("17.5"), ",17.5,18"},
        {PowerA("17.5"), ",17.5,NA"},
        {PowerB("-3"), ",NA,-3"},
        {PowerA("-0.5") + PowerB("17..5"), ",-0.5,17..5"},
        {PowerA("1") + PowerA("2"), ",1,NA"},
        {"Target Power: Chain A (1) 1 dBm, Chain B (2) 2 dBm", ",1,2"},
        {"Target Power: Chain A (2) 1 dBm\nTarget Power: Chain B (1) 2 dBm", ",NA,NA"},
    };
    for (const auto& [reply, suffix] : cases) {
        SCOPED_TRACE(reply);
        EXPECT_EQ(test.GetPowerLimitCsvFormat(reply), suffix);
    }
}

TEST_F(DynamicTestLineTest, CellThatLooksLikeAPlaceholderIsSentShownAndRecorded) {
    EXPECT_THAT(Process("Band,Chains", "${1},a${2}b"),
                ElementsAre("-wifi-band ${1} -wifi-tx-chains-from-file a${2}b " + start, stop));
    EXPECT_THAT(console.Out(), HasSubstr("\nBand = ${1}, Chains = a${2}b, \n"));
    EXPECT_EQ(csv.str(), "${1},a${2}b,NA,NA\n");
    EXPECT_THAT(Process("Band,Chains", "${6},$1"),
                ElementsAre("-wifi-band ${6} -wifi-tx-chains-from-file $1 " + start, stop));
}

bool IsOfFiling(const std::string& record) {
    return record.find("DynamicTest::SaveResultsToXml") != std::string::npos;
}

TEST_F(DynamicTestLineTest, RowIsFlushedBeforeTheTreeIsFilled) {
    const Utilities::LogRecorder log(Utilities::LogLevel::Info);
    /// Notes at each flush whether the filing has begun.
    class Flushes : public std::stringbuf {
    public:
        explicit Flushes(const std::vector<std::string>& trace) : m_trace(trace) {}
        std::vector<bool> isFiling;

    protected:
        int sync() override {
            isFiling.push_back(std::any_of(m_trace.begin(), m_trace.end(), IsOfFiling));
            return 0;
        }

    private:
        const std::vector<std::string>& m_trace;
    } buffer(log.records);
    std::ostream stream(&buffer);
    test.ProcessHeaderTestFile(stream, "Band");
    test.ProcessLineTestFile(stream, "5");
    EXPECT_THAT(buffer.isFiling, ElementsAre(false, false));
    EXPECT_TRUE(std::any_of(log.records.begin(), log.records.end(), IsOfFiling));
}

TEST_F(DynamicTestLineTest, LineIsTraced) {
    ProcessHeader("Band");
    const Utilities::LogRecorder log(Utilities::LogLevel::Info);
    test.ProcessLineTestFile(csv, "5");
    std::string trace;
    for (const std::string& record : log.records) {
        const std::size_t function = record.find("|DynamicTest::") + 14;
        const bool isEnter = record.find(">Enter") != std::string::npos;
        const std::string name = record.substr(function, record.find('|', function) - function);
        trace += (isEnter ? name + "(" : ")");
    }
    const std::string lookUps = [] {
        std::string text;
        for (int column = 0; column < 9; ++column)
            text += "GetResultValue()";
        return text;
    }();
    EXPECT_EQ(trace, "ProcessLineTestFile(CommitAndRunTest(SendCommands()SendCommands())"
                     "GetPowerLimitCsvFormat()SaveResultsToXml(" +
                         lookUps + "GetXmlNode()GetXmlNode()GetXmlNode()GetXmlNode()))");
    EXPECT_EQ(
        log.records.front(),
        "4|src/Tools/Vemo/VemoClient/DynamicTest/DynamicTest|DynamicTest::ProcessLineTestFile|"
        "--------------------->Enter");
}

TEST_F(DynamicTestLineTest, HeaderIsTracedAlsoWhenItIsInvalid) {
    const Utilities::LogRecorder log(Utilities::LogLevel::Info);
    test.ProcessHeaderTestFile(csv, "Unknown");
    const std::string record =
        "4|src/Tools/Vemo/VemoClient/DynamicTest/DynamicTest|DynamicTest::ProcessHeaderTestFile|";
    EXPECT_THAT(log.records, ElementsAre(record + "--------------------->Enter",
                                         record + "<---------------------Exit"));
}

} // namespace
