#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/RunProbe.h"

#include <windows.h>

#include <gtest/gtest.h>

// Ends runs by keys on their console. Ctrl-Break and the closing of the console are not tested:
// wine sends neither to all programs of a console.

namespace Bench {
namespace {

using EndToEnd::ProcessResult;

BOOL WINAPI IgnoreKey(DWORD /*event*/) {
    return TRUE;
}

/// Puts this program and the run on a console of their own, which the daemon does not share.
class ConsoleTest : public testing::Test {
protected:
    void SetUp() override { ::FreeConsole(); }
    void TearDown() override {
        ::SetConsoleCtrlHandler(&IgnoreKey, FALSE);
        ::FreeConsole();
    }

    std::unique_ptr<EndToEnd::Process> StartRun(const std::vector<std::string>& options) const {
        EXPECT_TRUE(::AllocConsole()) << ::GetLastError();
        // What a parent may have set for its children.
        ::SetConsoleCtrlHandler(nullptr, FALSE);
        ::SetConsoleCtrlHandler(&IgnoreKey, TRUE);
        return probe.Start(daemon.Address(), options);
    }

    static void PressCtrlC() {
        ASSERT_TRUE(::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0)) << ::GetLastError();
    }

    RunProbe probe;
    RestartableDaemon daemon;
};

TEST_F(ConsoleTest, CtrlCInAStartAwaitsItsAnswerAndStops) {
    daemon.Start({"--fault", "4:delay=5000"});
    const auto run = StartRun({});
    daemon.WaitForExchanges("fmcS");
    PressCtrlC();
    const ProcessResult result = run->Wait();
    EXPECT_EQ(result.exitCode, 3) << result.err;
    EXPECT_NE(result.out.find("it was interrupted"), std::string::npos) << result.out;
    EXPECT_EQ(daemon.Exchanges(), "fmcSx");
    EXPECT_EQ(probe.Lines("exchanges.jsonl").at(3).Text("end"), "answered");
    EXPECT_TRUE(probe.Facts().Flag("stopConfirmed"));
}

TEST_F(ConsoleTest, CtrlCInAStopAwaitsItsAnswer) {
    daemon.Start({"--fault", "5:delay=5000"});
    const auto run = StartRun({});
    daemon.WaitForExchanges("fmcSx");
    PressCtrlC();
    EXPECT_EQ(run->Wait().exitCode, 3);
    EXPECT_EQ(daemon.Exchanges(), "fmcSx");
    EXPECT_TRUE(probe.Facts().Flag("stopConfirmed"));
}

TEST_F(ConsoleTest, SecondCtrlCEndsTheRunAtOnce) {
    daemon.Start({"--fault", "4:delay=5000", "--fault", "text=-wifi-stop:no-answer"});
    // As long as no test takes.
    const auto run = StartRun({"--stop-timeout", "5000"});
    daemon.WaitForExchanges("fmcS");
    PressCtrlC();
    daemon.WaitForExchanges("fmcSx");
    PressCtrlC();
    const ProcessResult result = run->Wait();
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(result.exitCode, 4) << result.err;
    EXPECT_NE(result.out.find("The transmitter may still be ON"), std::string::npos) << result.out;
}

} // namespace
} // namespace Bench
