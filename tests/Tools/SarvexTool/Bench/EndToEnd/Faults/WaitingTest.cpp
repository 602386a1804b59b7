#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/RunProbe.h"

#include <gtest/gtest.h>

#include <filesystem>
#include <fstream>

// Time-outs, and daemons that come and go.

namespace Bench {
namespace {

using EndToEnd::Process;
using EndToEnd::ProcessResult;

constexpr const char* bothMeasured = "2 measured, measured; 3 measured, measured";
/// What the simulated device gives for the test file, without noise.
constexpr const char* wholeResult = "Band,Chains,Bandwidth,Channel,Chain-A Power, Chain B Power\n"
                                    "5,AB,20,36,17.86,17.61\n-,-,-,40,17.9,17.65\n";

class WaitingTest : public testing::Test {
protected:
    static void WaitUntilItWaits(const Process& run) {
        WaitUntil("the run waits for the daemon", [&run] {
            return run.ErrSoFar().find("waiting for the daemon") != std::string::npos;
        });
    }

    RunProbe probe;
    RestartableDaemon daemon;
};

TEST_F(WaitingTest, DaemonThatComesLaterIsWaitedFor) {
    const auto run = probe.Start(daemon.Address());
    WaitUntilItWaits(*run);
    daemon.Start();
    EXPECT_EQ(run->Wait().exitCode, 0);
    EXPECT_EQ(daemon.Exchanges(), "fmcSxSx");
    EXPECT_EQ(probe.Outcomes(), bothMeasured);
}

TEST_F(WaitingTest, DaemonThatNeverComesEndsTheRun) {
    const ProcessResult result = probe.Run(daemon.Address(), {"--wait", "1"});
    EXPECT_EQ(result.exitCode, 3);
    EXPECT_NE(result.out.find("the daemon is gone"), std::string::npos) << result.out;
    EXPECT_FALSE(probe.Facts().Flag("startPassedOn"));
}

TEST_F(WaitingTest, AfterARestartTheLineGoesOnWithTheSettingsSoFar) {
    daemon.Start({"--fault", "6:no-answer"});
    const auto run = probe.Start(daemon.Address());
    daemon.WaitForExchanges("fmcSxS");
    daemon.Kill();
    WaitUntilItWaits(*run);
    daemon.Start();
    EXPECT_EQ(run->Wait().exitCode, 0);
    EXPECT_EQ(daemon.Exchanges(), "fmcSxS|xrSx");
    EXPECT_EQ(daemon.Commands()[7], "CLI -1 -vemo -wifi-band 5 -wifi-tx-chains-from-file AB "
                                    "-wifi-bandwidth 20 -wifi-channel 36");
    EXPECT_EQ(probe.Outcomes(), bothMeasured);
    EXPECT_EQ(probe.Result(), wholeResult);
}

TEST_F(WaitingTest, RestartThatNoExchangeMeetsIsNoticed) {
    daemon.Start();
    // The client pauses after each line.
    const auto run = probe.Start(daemon.Address(), {"--client", ProgramPath("SarvexToolClient")});
    daemon.WaitForExchanges("fmcSx");
    probe.WaitForAnswer(daemon);
    daemon.Kill();
    daemon.Start();
    EXPECT_EQ(run->Wait().exitCode, 0);
    // Where the daemon was not there yet, it was stopped first.
    EXPECT_TRUE(daemon.Exchanges() == "fmcSx|rSx" || daemon.Exchanges() == "fmcSx|xrSx")
        << daemon.Exchanges();
    EXPECT_EQ(probe.Result(), wholeResult);
}

TEST_F(WaitingTest, AnotherDeviceAndClientAreToldWhenTheRunIsResumed) {
    const std::string client = probe.Path("client");
    std::filesystem::copy_file(ProgramPath("SarvexToolClientWithoutPauses"), client);
    daemon.Start({"--mcc", "DE", "--fault", "4:return-code=abc"});
    EXPECT_EQ(probe.Run(daemon.Address(), {"--client", client}).exitCode, 3);
    daemon.Kill();
    daemon.Start({"--mcc", "US", "--mac-type", "16"});
    // Programs are run whatever follows their last part.
    std::ofstream(client, std::ios::binary | std::ios::app) << "more";
    const ProcessResult resumed = probe.RunBench({"run", "--resume", "run"});
    EXPECT_EQ(resumed.exitCode, 0) << resumed.err;
    EXPECT_NE(resumed.out.find("Note: The client is not the one that the run began with.\n"
                               "Note: The device's MAC type has changed while the run went on.\n"
                               "Note: The device's country code has changed while the run went "
                               "on.\n"),
              std::string::npos)
        << resumed.out;
    EXPECT_EQ(probe.Facts().Integer("macType"), 5);
    EXPECT_EQ(probe.Facts().Text("countryCode"), "DE");
    EXPECT_NE(TestSupport::ReadBytes(probe.Path("run/result.xml")).find("DE"), std::string::npos);
}

TEST_F(WaitingTest, DaemonThatGoesAndStaysAwayEndsTheRunWithItsStopMissed) {
    daemon.Start({"--fault", "6:no-answer"});
    const auto run = probe.Start(daemon.Address(), {"--wait", "2", "--stop-timeout", "2"});
    daemon.WaitForExchanges("fmcSxS");
    daemon.Kill();
    EXPECT_EQ(run->Wait().exitCode, 4);
    EXPECT_EQ(probe.Outcomes(), "2 measured, measured");
    daemon.Start();
    const ProcessResult resumed = probe.RunBench({"run", "--resume", "run"});
    EXPECT_EQ(resumed.exitCode, 0) << resumed.out << resumed.err;
    EXPECT_EQ(daemon.Exchanges(), "fmcSxS|xxfmcrSx");
    EXPECT_EQ(probe.Result(), wholeResult);
}

struct Silence {
    const char* fault;
    const char* outcome;
};

TEST_F(WaitingTest, LineWhoseRepeatsAllFailIsRecordedAndTheNextOneRuns) {
    for (const Silence& silence :
         {Silence{"text=-wifi-channel 36:no-answer", "time-out"},
          Silence{"text=-wifi-channel 36:close-before", "connection lost"}}) {
        SCOPED_TRACE(silence.fault);
        const RunProbe own;
        RestartableDaemon daemonOfOne;
        daemonOfOne.Start({"--fault", silence.fault});
        const std::string outcome = silence.outcome;
        EXPECT_EQ(own.Run(daemonOfOne.Address(), {"--answer-timeout", "2"}).exitCode, 1);
        EXPECT_EQ(daemonOfOne.Exchanges(), "fmcSxSxSxxSx");
        EXPECT_EQ(own.Outcomes(), "2 " + outcome + ", " + outcome + "; 3 measured, measured");
    }
}

TEST_F(WaitingTest, RetriesAreAsManyAsWereAskedFor) {
    daemon.Start({"--fault", "text=-wifi-channel 36:close-before"});
    EXPECT_EQ(probe.Run(daemon.Address(), {"--retries", "0"}).exitCode, 1);
    EXPECT_EQ(daemon.Exchanges(), "fmcSxxSx");
}

TEST_F(WaitingTest, SlowAnswerThatNeverPausesIsNoTimeOut) {
    constexpr double timeout = 2;
    daemon.Start({"--fault", "4:drip=10"});
    EXPECT_EQ(probe.Run(daemon.Address(), {"--answer-timeout", "2"}).exitCode, 0);
    EXPECT_EQ(daemon.Exchanges(), "fmcSxSx");
    EXPECT_GT(probe.Lines("exchanges.jsonl").at(3).Seconds("seconds"), timeout);
}

// What a daemon says that it measured.

class EchoTest : public WaitingTest {};

TEST_F(EchoTest, PowerOfAnotherConfigurationNeverPasses) {
    probe.Write("answer.bin",
                "HTTP/1.1 200 OK\r\n\r\nSarvex tool INFO\n"
                "Target Power: Band 5 Channel 44 Bandwidth 20 MHz Chain A (1) 17.5 dBm\n"
                "Target Power: Band 5 Channel 36 Bandwidth 20 MHz Chain B (2) 17.25 dBm\n"
                "Sarvex tool RETURN CODE\n0\nDone");
    probe.Write("limits.csv", "Chain,Min,Max\n*,*,*\n");
    daemon.Start({"--fault", "text=-wifi-channel 36:raw=" + probe.Path("answer.bin")});
    EXPECT_EQ(probe.Run(daemon.Address()).exitCode, 1);
    EXPECT_EQ(probe.Outcomes(), "2 other configuration, measured; 3 measured, measured");
    EXPECT_EQ(probe.TextOf(2), "Channel 44 in place of 36");
    const ProcessResult judged = probe.RunBench({"judge", "run", "--limits", "limits.csv"});
    EXPECT_EQ(judged.exitCode, 1) << judged.err;
    EXPECT_NE(judged.out.find("line 2 chain A: not measured: the power is one of another "
                              "configuration: Channel 44 in place of 36"),
              std::string::npos)
        << judged.out;
}

} // namespace
} // namespace Bench
