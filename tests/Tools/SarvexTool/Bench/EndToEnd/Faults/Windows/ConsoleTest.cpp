#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/LateReader.h"

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

/// A console of their own for this program and the run, which the daemon does not share.
class OwnConsole {
public:
    /// None at first.
    OwnConsole() { ::FreeConsole(); }
    ~OwnConsole() {
        ::SetConsoleCtrlHandler(&IgnoreKey, FALSE);
        ::FreeConsole();
    }
    OwnConsole(const OwnConsole&) = delete;
    OwnConsole& operator=(const OwnConsole&) = delete;

    /// For the programs that are started from now on.
    static void Open() {
        EXPECT_TRUE(::AllocConsole()) << ::GetLastError();
        // What a parent may have set for its children.
        ::SetConsoleCtrlHandler(nullptr, FALSE);
        ::SetConsoleCtrlHandler(&IgnoreKey, TRUE);
    }

    static void PressCtrlC() {
        ASSERT_TRUE(::GenerateConsoleCtrlEvent(CTRL_C_EVENT, 0)) << ::GetLastError();
    }
};

class ConsoleTest : public testing::Test {
protected:
    std::unique_ptr<EndToEnd::Process> StartRun(const std::vector<std::string>& options) const {
        OwnConsole::Open();
        return probe.Start(daemon.Address(), options);
    }

    OwnConsole console;
    RunProbe probe;
    RestartableDaemon daemon;
};

TEST_F(ConsoleTest, CtrlCInAStartAwaitsItsAnswerAndStops) {
    daemon.Start({"--fault", "4:delay=5000"});
    const auto run = StartRun({});
    daemon.WaitForExchanges("fmcS");
    OwnConsole::PressCtrlC();
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
    OwnConsole::PressCtrlC();
    EXPECT_EQ(run->Wait().exitCode, 3);
    EXPECT_EQ(daemon.Exchanges(), "fmcSx");
    EXPECT_TRUE(probe.Facts().Flag("stopConfirmed"));
}

TEST_F(ConsoleTest, SecondCtrlCEndsTheRunAtOnce) {
    daemon.Start({"--fault", "4:delay=5000", "--fault", "text=-wifi-stop:no-answer"});
    // As long as no test takes.
    const auto run = StartRun({"--stop-timeout", "5000"});
    daemon.WaitForExchanges("fmcS");
    OwnConsole::PressCtrlC();
    daemon.WaitForExchanges("fmcSx");
    OwnConsole::PressCtrlC();
    const ProcessResult result = run->Wait();
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(result.exitCode, 4) << result.err;
    EXPECT_NE(result.out.find("The transmitter may still be ON"), std::string::npos) << result.out;
}

class LateReaderConsoleTest : public LateReader {
protected:
    OwnConsole console;
};

TEST_F(LateReaderConsoleTest, FirstCtrlCStopsSafelyAndTheReaderGetsAllLater) {
    daemon.Start({"--fault", AtLastStart("delay=5000")});
    OwnConsole::Open();
    const auto run = Start();
    WaitForLastStart();
    OwnConsole::PressCtrlC();
    WaitForLastStop();
    ExpectAll(run->ReadOut(), lines - 1);
    EXPECT_EQ(run->Wait().exitCode, 3);
    EXPECT_TRUE(probe.Facts().Flag("stopConfirmed"));
}

TEST_F(LateReaderConsoleTest, SecondCtrlCEndsTheRunAtOnceWithItsLastWordsElsewhere) {
    daemon.Start({"--fault", AtLastStart("delay=5000"), "--fault", AtLastStop("no-answer")});
    // As long as no test takes.
    OwnConsole::Open();
    const auto run = Start({"--stop-timeout", "5000"});
    WaitForLastStart();
    OwnConsole::PressCtrlC();
    WaitForLastStop();
    OwnConsole::PressCtrlC();
    const ProcessResult result = run->Wait();
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(result.exitCode, 4) << result.err;
    EXPECT_NE(result.err.find("The transmitter may still be ON."), std::string::npos) << result.err;
}

} // namespace
} // namespace Bench
