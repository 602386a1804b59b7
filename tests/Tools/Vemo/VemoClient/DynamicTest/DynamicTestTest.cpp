#include "Tools/Vemo/VemoClient/DynamicTest/DynamicTest.h"

#include "tests/Tools/Vemo/VemoClient/DynamicTest/DynamicTestFixture.h"

#include <algorithm>
#include <filesystem>
#include <fstream>
#include <string>
#include <utility>
#include <vector>

// Whole runs.

namespace {

using namespace std::string_literals;

using OSAL::Fake::CountCalls;
using OSAL::Fake::TheWorld;
using testing::ElementsAre;
using testing::HasSubstr;
using testing::IsEmpty;

class DynamicTestTest : public DynamicTestFixture {
protected:
    static std::vector<std::string> Pauses() {
        std::vector<std::string> pauses;
        for (const std::string& call : TheWorld().calls) {
            if (call.rfind("Sleep ", 0) == 0)
                pauses.push_back(call.substr(6));
        }
        return pauses;
    }

    const std::string emptyTable = "<?xml version=\"1.0\" ?>\n"
                                   "<PowerTable MCC=\"US\" OTPVersion=\"-\"/>\n";
};

TEST_F(DynamicTestTest, ConstructionOpensAndSendsNothing) {
    WriteFile("result.csv", "old");
    { const DynamicTest test("test.csv"); }
    EXPECT_EQ(ReadFile("result.csv"), "old");
    EXPECT_THAT(TheWorld().calls, IsEmpty());
}

TEST_F(DynamicTestTest, RunQueriesThenCommitsEachLine) {
    AnswerQueries();
    AnswerLine(PowerA("17.5") + PowerB("18"));
    AnswerLine(PowerA("16"));
    EXPECT_EQ(Run("Band,Chains\n5,AB\n6,A"), 0);
    EXPECT_THAT(Commands(), ElementsAre("-wifi-get-mac-type", "-wifi-get-mcc",
                                        "-wifi-band 5 -wifi-tx-chains-from-file AB " + start, stop,
                                        "-wifi-band 6 -wifi-tx-chains-from-file A " + start, stop));
    EXPECT_EQ(ReadFile("result.csv"),
              "Band,Chains,Chain-A Power, Chain B Power\n5,AB,17.5,18\n6,A,16,NA\n");
    EXPECT_EQ(console.Err(), "");
}

TEST_F(DynamicTestTest, EmptyFileHasAnEmptyHeaderAndNoLines) {
    AnswerQueries();
    EXPECT_EQ(Run(""), 0);
    EXPECT_EQ(ReadFile("result.csv"), ",Chain-A Power, Chain B Power\n");
    EXPECT_EQ(ReadFile("result.xml"), emptyTable);
    EXPECT_THAT(Commands(), ElementsAre("-wifi-get-mac-type", "-wifi-get-mcc"));
    EXPECT_THAT(Pauses(), IsEmpty());
    EXPECT_EQ(console.Err(), "");
}

TEST_F(DynamicTestTest, UnknownCountryIsFiledAsTheMarker) {
    EXPECT_EQ(Run("Band"), 0);
    EXPECT_EQ(ReadFile("result.xml"), "<?xml version=\"1.0\" ?>\n"
                                      "<PowerTable MCC=\"-\" OTPVersion=\"-\"/>\n");
}

TEST_F(DynamicTestTest, InvalidHeaderIsReportedAndTheLinesRunWithNoColumnSet) {
    AnswerQueries();
    AnswerLine(PowerA("17.5"));
    EXPECT_EQ(Run("Band,Chains,Power\n5,A,1\n5,B,1\n"), 0);
    EXPECT_THAT(Commands(),
                ElementsAre("-wifi-get-mac-type", "-wifi-get-mcc", start, stop, start, stop));
    EXPECT_EQ(ReadFile("result.csv"), "5,A,1,17.5,NA\n5,B,1,NA,NA\n");
    EXPECT_EQ(console.Err(), "Invalid On-demand Colunm: 'Power'.");
}

TEST_F(DynamicTestTest, EveryLineIsFollowedByAPauseALongerOneForASlowDevice) {
    const std::pair<const char*, std::vector<std::string>> cases[] = {
        {"Mac Type: 5\n", {"1000", "1000"}},
        {"Mac Type: 16\n", {"1000", "4000", "1000", "4000"}},
        {"Mac Type: 016\n", {"1000", "4000", "1000", "4000"}},
        {"", {"1000", "1000"}},
        {"Mac Type: 160\n", {"1000", "1000"}},
    };
    for (const auto& [macType, pauses] : cases) {
        SCOPED_TRACE(macType);
        TheWorld().calls.clear();
        TheWorld().received.clear();
        AnswerQueries(macType);
        EXPECT_EQ(Run("Band\n5\n\n"), 0);
        EXPECT_EQ(Pauses(), pauses);
    }
}

TEST_F(DynamicTestTest, PauseComesAfterTheLinesTwoExchanges) {
    EXPECT_EQ(Run("Band\n5\n"), 0);
    const auto& calls = TheWorld().calls;
    EXPECT_EQ(CountCalls("ConnectSocket"), 4);
    const auto pause = std::find(calls.begin(), calls.end(), "Sleep 1000");
    EXPECT_EQ(std::find_if(pause, calls.end(),
                           [](const auto& call) { return call.rfind("ConnectSocket", 0) == 0; }),
              calls.end());
}

TEST_F(DynamicTestTest, FileThatDoesNotOpenEndsTheRunBeforeAnythingIsSent) {
    for (const std::string name : {"missing.csv", "", "."}) {
        SCOPED_TRACE(name);
        const ConsoleCapture own;
        EXPECT_EQ(DynamicTest(name).Run(), 1);
        EXPECT_EQ(own.Err(), "Failed to open test file '" + name + "' or result file.");
    }
    EXPECT_THAT(TheWorld().calls, IsEmpty());
}

TEST_F(DynamicTestTest, ResultFileThatCannotBeCreatedEndsTheRunBeforeAnythingIsSent) {
    for (const char* name : {"result.csv", "result.xml"}) {
        SCOPED_TRACE(name);
        std::filesystem::remove(name);
        std::filesystem::create_directory(name);
        EXPECT_EQ(Run("Band\n5\n"), 1);
        std::filesystem::remove(name);
    }
    const std::string message = "Failed to open test file 'test.csv' or result file.";
    EXPECT_EQ(console.Err(), message + message);
    EXPECT_THAT(TheWorld().calls, IsEmpty());
}

TEST_F(DynamicTestTest, ResultsOfAnEarlierRunAreGoneWhenTheRunStopsEarly) {
    WriteFile("result.csv", "old");
    WriteFile("result.xml", "old");
    AnswerQueries();
    AnswerLine("");
    AnswerLine("Sarvex tool RETURN CODE\nabc\n");
    EXPECT_EQ(Run("Band\n5\n6\n7\n"), 1);
    EXPECT_EQ(ReadFile("result.csv"), "Band,Chain-A Power, Chain B Power\n5,NA,NA\n");
    EXPECT_EQ(ReadFile("result.xml"), "");
    EXPECT_EQ(console.Err(), "Failed to calcualte Tx Power limit: invalid stoi argument.");
    EXPECT_EQ(CountCalls("Sleep 1000"), 1) << "no pause after the line that failed";
}

TEST_F(DynamicTestTest, LineWhoseConnectionFailsUsesTheOneBefore) {
    // The daemon has gone: no new connection, but the old one still takes the command.
    TheWorld().connectSucceeds = [](int attempt) { return attempt < 4; };
    AnswerQueries();
    AnswerLine(PowerA("1"));
    AnswerLine(PowerA("2"));
    EXPECT_EQ(Run("Band\n5\n6\n"), 0);
    EXPECT_EQ(ReadFile("result.csv"), "Band,Chain-A Power, Chain B Power\n5,1,NA\n6,2,NA\n");
    EXPECT_EQ(CountCalls("Sleep 20"), 2 * 20) << "twenty attempts for each exchange of the line";
    EXPECT_EQ(CountCalls("send 103"), 3 * 2) << "the first line's stop and the second line's pair";
}

TEST_F(DynamicTestTest, LineWhoseConnectionFailsAndWhoseOldOneIsClosedEndsTheRun) {
    TheWorld().connectSucceeds = [](int attempt) { return attempt < 4; };
    TheWorld().failingSend = 8;
    AnswerQueries();
    AnswerLine(PowerA("1"));
    EXPECT_EQ(Run("Band\n5\n6\n"), 1);
    EXPECT_EQ(ReadFile("result.csv"), "Band,Chain-A Power, Chain B Power\n5,1,NA\n");
    EXPECT_EQ(console.Err(), "Failed to calcualte Tx Power limit: Failed Sending message.");
}

TEST_F(DynamicTestTest, MissingTestFileLeavesBothResultFilesEmpty) {
    WriteFile("result.csv", "old");
    WriteFile("result.xml", "old");
    EXPECT_EQ(DynamicTest("no such file").Run(), 1);
    EXPECT_EQ(ReadFile("result.csv") + ReadFile("result.xml"), "");
}

TEST_F(DynamicTestTest, CellsFollowTheRulesOfValuesAndOfTheRemoteOption) {
    // Cells are arguments like any other: a typed literal is sent as the value that it names, and
    // the remote option takes the argument after it for the daemon's address.
    AnswerQueries();
    AnswerLine("");
    AnswerLine("");
    EXPECT_EQ(Run("Band,Rate\n{string:a:b},x\n-remoteDaemon,x\n"), 0);
    const auto commands = Commands();
    ASSERT_EQ(commands.size(), 6u);
    EXPECT_EQ(commands[4], "-wifi-band x " + start);
    EXPECT_EQ(CountCalls("ResolveAddress [-wifi-rate]"), 2);
}

TEST_F(DynamicTestTest, AddressFromACellStaysForTheRestOfTheRun) {
    AnswerQueries();
    AnswerLine("");
    AnswerLine("");
    AnswerLine("");
    EXPECT_EQ(Run("Band,Rate\n-remoteDaemon,x\n5,y\n6,z\n"), 0);
    // The queries before it, and from then on every command of the three lines.
    EXPECT_EQ(CountCalls("ResolveAddress [127.0.0.1]"), 2);
    EXPECT_EQ(CountCalls("ResolveAddress [-wifi-rate]"), 6);
}

TEST_F(DynamicTestTest, ResultFileGivenAsTestFileIsEmptiedAndGivesAnEmptyTest) {
    for (const std::string name : {"result.csv", "result.xml"}) {
        SCOPED_TRACE(name);
        WriteFile(name, "Band\n5\n");
        TheWorld().calls.clear();
        AnswerQueries();
        EXPECT_EQ(DynamicTest(name).Run(), 0);
        EXPECT_EQ(CountCalls("Sleep"), 0);
    }
}

TEST_F(DynamicTestTest, FailedSendEndsTheRun) {
    AnswerQueries();
    AnswerLine(PowerA("1"));
    TheWorld().failingSend = 8;
    EXPECT_EQ(Run("Band\n5\n6\n"), 1);
    EXPECT_EQ(ReadFile("result.csv"), "Band,Chain-A Power, Chain B Power\n5,1,NA\n");
    EXPECT_EQ(console.Err(), "Failed to calcualte Tx Power limit: Failed Sending message.");
}

TEST_F(DynamicTestTest, CellThatLooksLikeAPlaceholderIsFiledAndTheRunGoesOn) {
    AnswerQueries();
    EXPECT_EQ(Run("Band,Chains\n${1},${2}\n6,A\n"), 0);
    EXPECT_EQ(ReadFile("result.csv"),
              "Band,Chains,Chain-A Power, Chain B Power\n${1},${2},NA,NA\n6,A,NA,NA\n");
    EXPECT_THAT(ReadFile("result.xml"), HasSubstr("<Band value=\"${1}\">"));
    EXPECT_THAT(ReadFile("result.xml"), HasSubstr("<chain${2} BandwidthMode=\"-\""));
    EXPECT_EQ(Commands().size(), 6u);
    EXPECT_EQ(console.Err(), "");
}

TEST_F(DynamicTestTest, ColumnNameThatLooksLikeAPlaceholderIsOneThatIsNotKnown) {
    EXPECT_EQ(Run("Band,${2}\n5,A\n"), 0);
    EXPECT_EQ(ReadFile("result.csv"), "5,A,NA,NA\n");
    EXPECT_EQ(Commands().size(), 4u);
    EXPECT_EQ(console.Err(), "Invalid On-demand Colunm: '${2}'.");
}

TEST_F(DynamicTestTest, FileNameThatLooksLikeAPlaceholderIsOneLikeAnyOther) {
    EXPECT_EQ(DynamicTest("x${1}.csv").Run(), 1);
    EXPECT_THAT(TheWorld().calls, IsEmpty());
    EXPECT_EQ(console.Err(), "Failed to open test file 'x${1}.csv' or result file.");
    WriteFile("x${1}.csv", "Band\n5\n");
    EXPECT_EQ(DynamicTest("x${1}.csv").Run(), 0);
    EXPECT_EQ(ReadFile("result.csv"), "Band,Chain-A Power, Chain B Power\n5,NA,NA\n");
}

TEST_F(DynamicTestTest, ExceptionThatNamesAPlaceholderIsReportedAsItIs) {
    TheWorld().onSleep = [] { throw std::runtime_error("no ${1}"); };
    EXPECT_EQ(Run("Band\n5\n"), 1);
    EXPECT_EQ(console.Err(), "Failed to calcualte Tx Power limit: no ${1}.");
}

TEST_F(DynamicTestTest, ByteOrderMarkBelongsToTheFirstColumnName) {
    EXPECT_EQ(Run("\xEF\xBB\xBF"
                  "Band,Chains\n5,A\n"),
              0);
    EXPECT_EQ(console.Err(), "Invalid On-demand Colunm: '\xEF\xBB\xBF"
                             "Band'.");
    EXPECT_EQ(ReadFile("result.csv"), "5,A,NA,NA\n");
}

TEST_F(DynamicTestTest, CarriageReturnsAreNoLineEnds) {
    EXPECT_EQ(Run("Band\r5\r6"), 0);
    EXPECT_EQ(console.Err(), "Invalid On-demand Colunm: 'Band\r5\r6'.");
    EXPECT_EQ(ReadFile("result.csv"), "");
}

TEST_F(DynamicTestTest, ZeroAndHighBytesAreSentAsTheyAre) {
    EXPECT_EQ(Run("Band,Chains\n\x80\xFF,a\0b\n"s), 0);
    EXPECT_EQ(Commands().at(2), "-wifi-band \x80\xFF -wifi-tx-chains-from-file a\0b "s + start);
    EXPECT_EQ(ReadFile("result.csv"),
              "Band,Chains,Chain-A Power, Chain B Power\n\x80\xFF,a\0b,NA,NA\n"s);
}

TEST_F(DynamicTestTest, LineOfOneMebibyteIsProcessed) {
    const std::string cell(1 << 20, 'x');
    EXPECT_EQ(Run("Band\n" + cell + "\n"), 0);
    EXPECT_EQ(Commands().at(2), "-wifi-band " + cell + " " + start);
    EXPECT_EQ(ReadFile("result.csv"), "Band,Chain-A Power, Chain B Power\n" + cell + ",NA,NA\n");
}

TEST_F(DynamicTestTest, ReplyWithALineOfFiveMegabytesIsSearched) {
    AnswerQueries();
    AnswerLine(std::string(5'000'000, 'x') + PowerA("17.5") + PowerB("18"));
    EXPECT_EQ(Run("Band\n5\n"), 0);
    EXPECT_EQ(ReadFile("result.csv"), "Band,Chain-A Power, Chain B Power\n5,17.5,18\n");
}

TEST_F(DynamicTestTest, LinesByTheHundredThousandAreProcessed) {
    std::string content = "Band,Channel,Chains\n";
    std::string csv = "Band,Channel,Chains,Chain-A Power, Chain B Power\n";
    for (int line = 0; line < 100'000; ++line) {
        const std::string cells =
            std::to_string(line % 3) + "," + std::to_string(line % 10) + ",AB";
        content += cells + "\n";
        csv += cells + ",NA,NA\n";
    }
    // The fake would keep everything that is asked of it.
    TheWorld().connectSucceeds = [](int) {
        TheWorld().calls.clear();
        TheWorld().sent.clear();
        return true;
    };
    EXPECT_EQ(Run(content), 0);
    EXPECT_TRUE(ReadFile("result.csv") == csv);
}

TEST_F(DynamicTestTest, ResultFilesThatCannotBeWrittenAreReported) {
    std::error_code error;
    for (const char* name : {"result.csv", "result.xml"})
        std::filesystem::create_symlink("/dev/full", name, error);
    if (error || !std::ofstream("result.csv"))
        GTEST_SKIP() << "there is no file here that is always full";
    AnswerQueries();
    EXPECT_EQ(Run("Band\n5\n"), 1);
    EXPECT_EQ(console.Err(),
              "Failed to create results xml file result.xml: it could not be written to its end."
              "Result file 'result.csv' is incomplete: it could not be written.");
}

TEST_F(DynamicTestTest, RowsThatCannotBeWrittenAreReportedAndDoNotChangeTheResult) {
    std::error_code error;
    std::filesystem::create_symlink("/dev/full", "result.csv", error);
    if (error || !std::ofstream("result.csv"))
        GTEST_SKIP() << "there is no file here that is always full";
    AnswerQueries();
    EXPECT_EQ(Run("Band\n"), 0);
    EXPECT_EQ(ReadFile("result.xml"), emptyTable);
    EXPECT_EQ(console.Err(), "Result file 'result.csv' is incomplete: it could not be written.");
}

} // namespace
