#include "tests/EndToEnd/Support/Process.h"
#include "tests/Tools/Vemo/VemoSimulator/Support/Peer.h"
#include "tests/Tools/Vemo/VemoSimulator/Support/RunningSimulator.h"

#include "Modules/xFramework/OSAL/Socket.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <filesystem>

namespace VemoSimulator {

using EndToEnd::ProcessResult;
using EndToEnd::TextMode;
using testing::EndsWith;
using testing::HasSubstr;
using testing::StartsWith;

namespace {

ProcessResult RunToEnd(const std::vector<std::string>& arguments) {
    const TestSupport::TemporaryDirectory directory;
    return EndToEnd::Run(SimulatorPath(), arguments, directory.Path());
}

/// A copy of the program with a port file beside it.
class StagedProgram {
public:
    explicit StagedProgram(const std::string& portFile) {
        std::filesystem::copy_file(SimulatorPath(), Path());
        TestSupport::WriteBytes(m_directory.Path("Socket.cfg"), portFile);
    }

    std::string Path() const {
        return m_directory.Path(EndToEnd::ExecutableName("SimulatedDaemon"));
    }
    std::string Directory() const { return m_directory.Path(); }

private:
    TestSupport::TemporaryDirectory m_directory;
};

} // namespace

TEST(ProgramTest, ItSaysWhereItListensAndEndsOnExit) {
    RunningSimulator simulator;
    const std::string port = std::to_string(simulator.Port());
    EXPECT_THAT(Exchange(simulator.Port(), "CLI -1  -exit"),
                "Sarvex tool INFO\nThe simulated daemon ends.\nSarvex tool RETURN CODE\n0\nDone");
    const ProcessResult result = simulator.Wait();
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.out, TextMode("vemo listens on 127.0.0.1:" + port + "\n"));
    EXPECT_EQ(result.err, "");
}

TEST(ProgramTest, HelpIsPrintedOnStandardOutput) {
    const ProcessResult result = RunToEnd({"--help"});
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.out, HasSubstr("--port N"));
    EXPECT_EQ(result.err, "");
}

TEST(ProgramTest, AWrongCommandLineFails) {
    const ProcessResult result = RunToEnd({"--prot", "0"});
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, TextMode("vemo: The following arguments were not expected: 0 --prot\n"
                                   "Run vemo --help for the options.\n"));
}

TEST(ProgramTest, APortInUseFails) {
    RunningSimulator simulator;
    const std::string port = std::to_string(simulator.Port());
    const ProcessResult result = RunToEnd({"--port", port});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.out, "");
    EXPECT_THAT(result.err, StartsWith("vemo: cannot listen on 127.0.0.1:" + port + ": "));
    EXPECT_EQ(simulator.End().exitCode, 0);
}

TEST(ProgramTest, ItsPortIsFreeAgainAtOnce) {
    std::string port;
    {
        // The side that closes first keeps the connection's address for a while.
        RunningSimulator simulator({"--fault", "*:no-mark"});
        port = std::to_string(simulator.Port());
        Exchange(simulator.Port(), "CLI -1 ");
    }
    RunningSimulator again({"--port", port});
    EXPECT_EQ(std::to_string(again.Port()), port);
    EXPECT_EQ(again.End().exitCode, 0);
}

TEST(ProgramTest, ARequestLogThatCannotBeWrittenFails) {
    const ProcessResult result = RunToEnd({"--port", "0", "--request-log", "no/such/folder"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, TextMode("vemo: cannot write the request log no/such/folder\n"));
}

TEST(ProgramTest, ThePortIsReadFromTheFileBesideTheProgram) {
    std::uint16_t port = 0;
    {
        const RunningSimulator unused;
        port = unused.Port();
    }
    const StagedProgram staged(std::to_string(port) + "7\n");
    EndToEnd::Process process(staged.Path(), {}, staged.Directory());
    EXPECT_EQ(WaitForLine(process), "vemo listens on 127.0.0.1:" + std::to_string(port));
    EXPECT_THAT(Exchange(port, "CLI -1  -exit"), EndsWith("Done"));
    EXPECT_EQ(process.Wait().exitCode, 0);
}

TEST(ProgramTest, APortFileWithoutAPortFails) {
    const StagedProgram staged("80\r\n");
    const ProcessResult result = EndToEnd::Run(staged.Path(), {}, staged.Directory());
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_THAT(result.err, HasSubstr("Socket.cfg hold no port; give a port with --port"));
}

TEST(ProgramTest, TheRequestLogHasALineForEachRequest) {
    RunningSimulator simulator({"--request-log", "requests.json", "--fault", "1:crlf"});
    Exchange(simulator.Port(), "CLI -1  -wifi-stop");
    // The line is there as soon as the answer is.
    EXPECT_EQ(simulator.ReadFile("requests.json"),
              R"({"number":1,"method":"POST","target":"/api/oemtools/command",)"
              R"("command":"CLI -1  -wifi-stop","bodyBytes":18,)"
              R"("headers":{"Host":"127.0.0.1:8738","Connection":"keep-alive",)"
              R"("Content-Length":"18","Content-Type":"text/plain"},"httpStatus":200,)"
              R"("returnCode":"0","answerBytes":156,"faults":["1:crlf"]})"
              "\n");
}

TEST(ProgramTest, OtherRequestsAreRefusedAndReported) {
    RunningSimulator simulator;
    Peer lost(simulator.Port());
    lost.Send("GET /homepage HTTP/1.1\r\n\r\n");
    EXPECT_EQ(BodyOf(lost.ReadToEnd()), "Commands go to /api/oemtools/command.\n");
    Peer garbage(simulator.Port());
    garbage.Send("Done\r\n\r\n");
    EXPECT_THAT(garbage.ReadToEnd(), StartsWith("HTTP/1.1 400 Bad Request\r\n"));
    EXPECT_EQ(simulator.End().err,
              TextMode("Request refused: Commands go to /api/oemtools/command.\n"
                       "Request refused: This is no valid request: bad method.\n"));
}

TEST(ProgramTest, ALongArgumentArrivesWhole) {
    RunningSimulator simulator;
    const std::string argument(5 << 20, 'x');
    EXPECT_EQ(Exchange(simulator.Port(), "CLI -1 -vemo  -remote " + argument),
              "Sarvex tool INFO\nThe remote address is noted.\nSarvex tool RETURN CODE\n0\nDone");
    EXPECT_EQ(simulator.End().exitCode, 0);
}

TEST(ProgramTest, TheBodyLimitIsKept) {
    RunningSimulator simulator({"--body-limit", "17"});
    EXPECT_THAT(Exchange(simulator.Port(), "CLI -1 -wifi-stop"), EndsWith("Done"));
    EXPECT_EQ(Exchange(simulator.Port(), "CLI -1 -wifi-start"),
              "This is no valid request: body limit exceeded.\n");
}

TEST(ProgramTest, SettingsLiveFromCommandToCommand) {
    RunningSimulator simulator({"--noise", "0", "--mac-type", "16", "--mcc", "DE"});
    Exchange(simulator.Port(), "CLI -1 -vemo -wifi-band 6 -wifi-channel 5 "
                               "-wifi-tx-chains-from-file A");
    EXPECT_EQ(Exchange(simulator.Port(), "CLI -1 -vemo -wifi-calibrate-tx -wifi-start "
                                         "-wifi-get-mac-type -wifi-get-mcc"),
              "Sarvex tool INFO\nThe transmitter is calibrated.\nStarted in mode tx_modulated.\n"
              "Target Power: Band 6 Channel 5 Bandwidth 20 MHz Rate MCS0 Chain A (1) 15.88 dBm\n"
              "Mac Type: 16\nCurrent MCC: DE\nSarvex tool RETURN CODE\n0\nDone");
}

TEST(ProgramTest, ThousandsOfConnectionsStayOpenAtOnce) {
    OSAL::StartSockets();
    RunningSimulator simulator;
    // The second round needs the descriptors of the first, which the program has got back.
    for (int round = 0; round < 2; ++round) {
        SCOPED_TRACE(round);
        std::vector<Peer> peers;
        for (int number = 0; number < VEMO_OPEN_CONNECTIONS; ++number) {
            Peer& peer = peers.emplace_back(simulator.Port());
            peer.SendCommand("CLI -1 ");
            ASSERT_THAT(peer.ReadToEnd(), EndsWith("Done"));
        }
    }
    const ProcessResult result = simulator.End();
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
}

} // namespace VemoSimulator
