#include "Modules/xFramework/OSAL/Process.h"
#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/ScriptedPeer.h"

#include <gmock/gmock.h>

#include <future>
#include <memory>

namespace EndToEnd {
namespace {

using testing::ElementsAre;
using testing::HasSubstr;

/// Runs the power test against a peer that keeps each command and answers it from a table.
class TestRunTest : public testing::Test {
protected:
    /// The answer to the command with this number, from 0; the first is the ordinary one before the
    /// run.
    using Answers = std::function<void(Connection&, const std::string& command, int number)>;

    ProcessResult RunTest(const std::string& testFile, const Answers& answers) {
        ScriptedPeer peer([&](Connection& connection, int number) {
            const std::string request = connection.ReadRequest();
            const std::string command = request.substr(request.find("\r\n\r\n") + 4);
            commands.push_back(command);
            answers(connection, command, number);
        });
        bench.SetPort(peer.Port());
        bench.Write("test.csv", testFile);
        return bench.RunClient({"-wifi-test-by-file", "test.csv"});
    }

    static void AnswerAll(Connection& connection, const std::string& command, int) {
        if (command.find("-wifi-get-mac-type") != std::string::npos)
            connection.Send("Mac Type: 7\nDone");
        else if (command.find("-wifi-get-mcc") != std::string::npos)
            connection.Send("Current MCC: US\nDone");
        else if (command.find("-wifi-start") != std::string::npos)
            connection.Send("Target Power: x Chain A (1) 17.5 dBm\nTarget Power: x Chain B (2) 18 "
                            "dBm\nDone");
        else
            connection.Send("okDone");
    }

    Bench bench;
    std::vector<std::string> commands;
};

TEST_F(TestRunTest, RunSendsItsCommandsInOrderAndFilesBothResults) {
    const ProcessResult result = RunTest("Band,Chains,Channel\n5,AB,36\n", AnswerAll);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(commands,
                ElementsAre("CLI -1 ", "CLI -1 -vemo -wifi-get-mac-type",
                            "CLI -1 -vemo -wifi-get-mcc",
                            "CLI -1 -vemo -wifi-band 5 -wifi-tx-chains-from-file AB -wifi-channel "
                            "36 -wifi-calibrate-tx -wifi-mode tx_modulated -wifi-start",
                            "CLI -1 -vemo -wifi-stop"));
    EXPECT_EQ(bench.Read("result.csv"),
              TextMode("Band,Chains,Channel,Chain-A Power, Chain B Power\n5,AB,36,17.5,18\n"));
    EXPECT_EQ(bench.Read("result.xml"),
              TextMode("<?xml version=\"1.0\" ?>\n"
                       "<PowerTable MCC=\"US\" OTPVersion=\"-\">\n"
                       "\t<Band value=\"5\">\n"
                       "\t\t<Bandwidth value=\"- MHz\">\n"
                       "\t\t\t<Channel value=\"36\">\n"
                       "\t\t\t\t<Rate value=\"-\">\n"
                       "\t\t\t\t\t<chainAB BandwidthMode=\"-\" LargeRUSize=\"-\" "
                       "ResourceUnit=\"-\" SpecificResourceUnit=\"-\" power=\"17.5dBm\"/>\n"
                       "\t\t\t\t</Rate>\n"
                       "\t\t\t</Channel>\n"
                       "\t\t</Bandwidth>\n"
                       "\t</Band>\n"
                       "</PowerTable>\n"));
    // The line's own pause is real here.
    EXPECT_GE(result.seconds, 1.0);
}

TEST_F(TestRunTest, SlowDeviceCostsFiveSecondsALine) {
    const ProcessResult result =
        RunTest("Band\n5\n", [](Connection& connection, const std::string& command, int) {
            connection.Send(command.find("mac-type") == std::string::npos ? "okDone"
                                                                          : "Mac Type: 16\nDone");
        });
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_GE(result.seconds, 5.0);
}

/// Runs two lines against a daemon that goes away after the first line's stop.
class TestRunDyingDaemonTest : public TestRunTest {
protected:
    ProcessResult RunUntilItDies(const std::function<void()>& afterDeath) {
        std::promise<void> died;
        auto peer = std::make_unique<ScriptedPeer>([&](Connection& connection, int number) {
            AnswerAll(connection, connection.ReadRequest(), number);
            if (number == 4)
                died.set_value();
        });
        port = peer->Port();
        bench.SetPort(port);
        bench.Write("test.csv", "Band\n5\n6\n");
        Process client(bench.ClientPath(), {"-wifi-test-by-file", "test.csv"}, bench.Directory());
        // The client pauses for a second after the line.
        died.get_future().wait();
        peer.reset();
        afterDeath();
        return client.Wait();
    }

    std::string port;
};

TEST_F(TestRunDyingDaemonTest, DaemonThatDiesForGoodEndsTheRunAndKeepsTheRows) {
    const ProcessResult result = RunUntilItDies([] {});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, "Failed to calcualte Tx Power limit: Failed Sending message.");
    EXPECT_EQ(bench.Read("result.csv"), TextMode("Band,Chain-A Power, Chain B Power\n5,17.5,18\n"));
    EXPECT_EQ(bench.Read("result.xml"), "");
}

TEST_F(TestRunDyingDaemonTest, DaemonThatComesBackInTimeGoesUnnoticed) {
    std::unique_ptr<ScriptedPeer> reborn;
    const ProcessResult result = RunUntilItDies([&] {
        reborn = std::make_unique<ScriptedPeer>(
            [](Connection& connection, int number) {
                AnswerAll(connection, connection.ReadRequest(), number);
            },
            "127.0.0.1", port);
    });
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(bench.Read("result.csv"),
              TextMode("Band,Chain-A Power, Chain B Power\n5,17.5,18\n6,17.5,18\n"));
}

TEST_F(TestRunTest, ConnectionsThatAreResetGiveRowsWithoutPowers) {
    const ProcessResult result =
        RunTest("Band\n5\n6\n", [](Connection& connection, const std::string& command, int number) {
            if (number < 5)
                return AnswerAll(connection, command, number);
            connection.Reset();
        });
    // What arrived is processed: nothing, so the row says NA.
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(bench.Read("result.csv"),
              TextMode("Band,Chain-A Power, Chain B Power\n5,17.5,18\n6,NA,NA\n"));
}

TEST_F(TestRunTest, CrLfTestFileFollowsThePlatformsTextMode) {
    const ProcessResult result = RunTest("Band,Chains\r\n5,A\r\n", AnswerAll);
    EXPECT_EQ(result.exitCode, 0);
    // Where the platform translates line ends, none is left in the lines; elsewhere the carriage
    // return stays at the end of each line, while the trimmed cells lose it.
    const std::string kept = TextMode("\n") == "\n" ? "\r" : "";
    EXPECT_EQ(bench.Read("result.csv"),
              TextMode("Band,Chains" + kept + ",Chain-A Power, Chain B Power\n5,A" + kept +
                       ",17.5,18\n"));
    EXPECT_THAT(commands[3], HasSubstr(" -wifi-band 5 -wifi-tx-chains-from-file A -wifi-cal"));
}

TEST_F(TestRunTest, EndOfFileByteFollowsThePlatformsTextMode) {
    const ProcessResult result = RunTest("Band,Rate\n5,R\x1A,x\n6,S\n", AnswerAll);
    EXPECT_EQ(result.exitCode, 0);
    const std::string rows =
        TextMode("\n") == "\n" ? "5,R\x1A,x,17.5,18\n6,S,17.5,18\n" : "5,R,17.5,18\n";
    EXPECT_EQ(bench.Read("result.csv"),
              TextMode("Band,Rate,Chain-A Power, Chain B Power\n" + rows));
}

TEST_F(TestRunTest, CellsThatLookLikePlaceholdersAreSentShownAndRecorded) {
    const ProcessResult result = RunTest("Band,Rate\n${1},a${2}b\n${5},R1\n", AnswerAll);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_THAT(result.out, HasSubstr(TextMode("\nBand = ${1}, Rate = a${2}b, \n")));
    ASSERT_EQ(commands.size(), 7u);
    EXPECT_THAT(commands[3], HasSubstr(" -wifi-band ${1} -wifi-rate a${2}b -wifi-calibrate-tx"));
    EXPECT_THAT(commands[5], HasSubstr(" -wifi-band ${5} -wifi-rate R1 -wifi-calibrate-tx"));
    EXPECT_EQ(bench.Read("result.csv"), TextMode("Band,Rate,Chain-A Power, Chain B Power\n"
                                                 "${1},a${2}b,17.5,18\n${5},R1,17.5,18\n"));
    EXPECT_THAT(bench.Read("result.xml"), HasSubstr("<Band value=\"${1}\">"));
}

TEST_F(TestRunTest, ColumnNameThatLooksLikeAPlaceholderIsOneThatIsNotKnown) {
    const ProcessResult result = RunTest("Band,${2}\n5,A\n", AnswerAll);
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "Invalid On-demand Colunm: '${2}'.");
    EXPECT_EQ(bench.Read("result.csv"), TextMode("5,A,17.5,18\n"));
}

TEST_F(TestRunTest, FileNameThatLooksLikeAPlaceholderIsOneLikeAnyOther) {
    ScriptedPeer peer([](Connection& connection, int) {
        connection.ReadRequest();
        connection.Send("okDone");
    });
    bench.SetPort(peer.Port());
    const ProcessResult missing = bench.RunClient({"-wifi-test-by-file", "x${1}.csv"});
    EXPECT_EQ(missing.exitCode, 1);
    EXPECT_EQ(missing.err, "Failed to open test file 'x${1}.csv' or result file.");
    bench.Write("x${1}.csv", "Band\n5\n");
    const ProcessResult result = bench.RunClient({"-wifi-test-by-file", "x${1}.csv"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(bench.Read("result.csv"), TextMode("Band,Chain-A Power, Chain B Power\n5,NA,NA\n"));
}

TEST_F(TestRunTest, FilesThatCannotBeOpenedEndTheRunBeforeItSends) {
    struct Case {
        const char* what;
        std::string directory;
        std::string testFile;
    };
    for (const Case& row : {Case{"no test file", "", "missing.csv"},
                            Case{"test file is a directory", "folder", "folder"},
                            Case{"result.csv is a directory", "result.csv", "test.csv"},
                            Case{"result.xml is a directory", "result.xml", "test.csv"}}) {
        SCOPED_TRACE(row.what);
        const Bench own;
        if (!row.directory.empty())
            std::filesystem::create_directory(own.Path(row.directory));
        own.Write("test.csv", "Band\n5\n");
        int connections = 0;
        ScriptedPeer peer([&](Connection& connection, int) {
            ++connections;
            connection.ReadRequest();
            connection.Send("okDone");
        });
        own.SetPort(peer.Port());
        const ProcessResult result = own.RunClient({"-wifi-test-by-file", row.testFile});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.err, "Failed to open test file '" + row.testFile + "' or result file.");
        EXPECT_EQ(connections, 1) << "the ordinary command only";
    }
}

TEST_F(TestRunTest, OutputThatNobodyReadsAnyMoreDoesNotEndTheRun) {
    ScriptedPeer peer([](Connection& connection, int number) {
        AnswerAll(connection, connection.ReadRequest(), number);
    });
    bench.SetPort(peer.Port());
    bench.Write("test.csv", "Band\n5\n6\n");
    Process client(bench.ClientPath(), {"-wifi-test-by-file", "test.csv"}, bench.Directory(),
                   {.output = Process::Output::BrokenPipe, .inputFile = {}});
    const ProcessResult result = client.Wait();
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
    EXPECT_EQ(bench.Read("result.csv"),
              TextMode("Band,Chain-A Power, Chain B Power\n5,17.5,18\n6,17.5,18\n"));
    EXPECT_THAT(bench.Read("result.xml"), testing::EndsWith(TextMode("</PowerTable>\n")));
}

TEST_F(TestRunTest, PowerIsFoundInALineOfMegabytes) {
    const std::string filler(1'000'000, 'x');
    const ProcessResult result =
        RunTest("Band\n5\n", [&](Connection& connection, const std::string& command, int number) {
            if (command.find("-wifi-start") == std::string::npos)
                return AnswerAll(connection, command, number);
            connection.Send(filler + "\nTarget Power: " + filler + " Chain A (1) 17.5 dBm " +
                            filler + "\n" + filler + "\n");
            connection.FinishSending();
        });
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(bench.Read("result.csv"), TextMode("Band,Chain-A Power, Chain B Power\n5,17.5,NA\n"));
}

} // namespace
} // namespace EndToEnd
