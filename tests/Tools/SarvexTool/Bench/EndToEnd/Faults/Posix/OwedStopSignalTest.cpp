#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/Posix/FullPipe.h"
#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/RunProbe.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <sys/stat.h>
#include <sys/syscall.h>
#include <unistd.h>

#include <csignal>
#include <filesystem>
#include <fstream>
#include <utility>

// Resumes a run that was killed in a start, and interrupts that: the stop that the run owes comes
// first.

namespace Bench {
namespace {

using EndToEnd::Interruption;
using EndToEnd::Process;
using EndToEnd::ProcessResult;

constexpr Interruption interrupt{"SIGINT", SIGINT};
constexpr Interruption terminate{"SIGTERM", SIGTERM};

class OwedStopSignalTest : public testing::Test {
protected:
    RunProbe probe;
    RestartableDaemon daemon;
};

TEST_F(OwedStopSignalTest, IsAwaitedWhenResumingIsInterrupted) {
    daemon.Start({"--fault", "4:no-answer", "--fault", "5:delay=8000"});
    auto run = probe.Start(daemon.Address());
    daemon.WaitForExchanges("fmcS");
    run.reset();
    Process resuming(BenchPath(), {"run", "--resume", "run"}, probe.Path(""));
    daemon.WaitForExchanges("fmcSx");
    resuming.Interrupt(terminate);
    const ProcessResult result = resuming.Wait();
    EXPECT_EQ(result.exitCode, 3) << result.err;
    EXPECT_EQ(result.out, "The daemon at " + daemon.Address() + " has confirmed the stop.\n");
    EXPECT_EQ(daemon.Exchanges(), "fmcSx");
}

TEST_F(OwedStopSignalTest, IsMissedWhenResumingIsInterrupted) {
    daemon.Start({"--fault", "4:no-answer", "--fault", "5:no-answer"});
    auto run = probe.Start(daemon.Address(), {"--stop-timeout", "8"});
    daemon.WaitForExchanges("fmcS");
    run.reset();
    Process resuming(BenchPath(), {"run", "--resume", "run"}, probe.Path(""));
    daemon.WaitForExchanges("fmcSx");
    resuming.Interrupt(interrupt);
    const ProcessResult result = resuming.Wait();
    EXPECT_EQ(result.exitCode, 4) << result.out;
    EXPECT_EQ(result.err, "The transmitter may still be ON: the daemon at " + daemon.Address() +
                              " gives no whole answer within 8 s.\n");
    EXPECT_EQ(daemon.Exchanges(), "fmcSx");
}

TEST_F(OwedStopSignalTest, IsNotAwaitedAfterASecondOne) {
    daemon.Start({"--fault", "4:no-answer", "--fault", "5:no-answer"});
    // As long as no test takes.
    auto run = probe.Start(daemon.Address(), {"--stop-timeout", "5000"});
    daemon.WaitForExchanges("fmcS");
    run.reset();
    Process resuming(BenchPath(), {"run", "--resume", "run"}, probe.Path(""));
    daemon.WaitForExchanges("fmcSx");
    WaitUntil("the second one ends it", [&] {
        resuming.Interrupt(interrupt);
        return resuming.HasEnded();
    });
    const ProcessResult result = resuming.Wait();
    EXPECT_EQ(result.exitCode, 4) << result.out;
    EXPECT_EQ(result.err, "The transmitter may still be ON: the daemon at " + daemon.Address() +
                              " was not waited for.\n");
}

/// Whether the main thread of a process waits for the reader of its standard error.
bool WritesErrors(const Process& process) {
    const std::string id = std::to_string(process.Id());
    std::ifstream file("/proc/" + id + "/task/" + id + "/syscall");
    long call = -1;
    std::string first;
    file >> call >> first;
    return (call == SYS_write || call == SYS_writev) && first == "0x2";
}

TEST_F(OwedStopSignalTest, IsNotAwaitedForTheReaderOfTheLastWordsEither) {
    daemon.Start({"--fault", "4:no-answer", "--fault", "5:no-answer"});
    // As long as no test takes.
    auto run = probe.Start(daemon.Address(), {"--stop-timeout", "5000"});
    daemon.WaitForExchanges("fmcS");
    run.reset();
    const FullPipe errors(probe.Path("errors"));
    Process resuming("/bin/sh",
                     {"-c", "exec \"$0\" \"$@\" 2> errors", BenchPath(), "run", "--resume", "run"},
                     probe.Path(""));
    daemon.WaitForExchanges("fmcSx");
    WaitUntil("the second one ends it", [&] {
        resuming.Interrupt(interrupt);
        return resuming.HasEnded();
    });
    EXPECT_EQ(resuming.Wait().exitCode, 4);
}

TEST_F(OwedStopSignalTest, IsConfirmedThoughNobodyReadsIt) {
    daemon.Start({"--fault", "4:no-answer", "--fault", "5:delay=8000"});
    auto run = probe.Start(daemon.Address());
    daemon.WaitForExchanges("fmcS");
    run.reset();
    const FullPipe errors(probe.Path("errors"));
    Process resuming("/bin/sh",
                     {"-c", "exec \"$0\" \"$@\" 2> errors", BenchPath(), "run", "--resume", "run",
                      "--progress", "json"},
                     probe.Path(""));
    daemon.WaitForExchanges("fmcSx");
    resuming.Interrupt(interrupt);
    WaitUntil("the last words wait for their reader", [&] { return WritesErrors(resuming); });
    WaitUntil("the second one ends it", [&] {
        resuming.Interrupt(interrupt);
        return resuming.HasEnded();
    });
    EXPECT_EQ(resuming.Wait().exitCode, 3);
}

/// The test file of a run, whose reader waits until it is written.
class LateTestFile {
public:
    explicit LateTestFile(const RunProbe& probe)
        : m_name(probe.Path("test.csv")), m_content(TestSupport::ReadBytes(m_name)) {
        std::filesystem::remove(m_name);
        ::mkfifo(m_name.c_str(), S_IRUSR | S_IWUSR);
    }
    ~LateTestFile() { ::close(m_writer); }
    LateTestFile(const LateTestFile&) = delete;
    LateTestFile& operator=(const LateTestFile&) = delete;

    void WaitForReader() {
        WaitUntil("the test file is read", [this] {
            m_writer = ::open(m_name.c_str(), O_WRONLY | O_NONBLOCK | O_CLOEXEC);
            return m_writer >= 0;
        });
    }

    void Write() {
        EXPECT_EQ(::write(m_writer, m_content.data(), m_content.size()),
                  static_cast<ssize_t>(m_content.size()));
        ::close(std::exchange(m_writer, -1));
    }

private:
    std::string m_name;
    std::string m_content;
    int m_writer = -1;
};

TEST_F(OwedStopSignalTest, WhenItIsMissedARequestWaitsForTheRunsOwn) {
    daemon.Start({"--fault", "4:no-answer", "--fault", "5:close-before"});
    auto run = probe.Start(daemon.Address());
    daemon.WaitForExchanges("fmcS");
    run.reset();
    LateTestFile testFile(probe);
    Process resuming(BenchPath(), {"run", "--resume", "run"}, probe.Path(""));
    testFile.WaitForReader();
    EXPECT_EQ(daemon.Exchanges(), "fmcSx");
    resuming.Interrupt(interrupt);
    testFile.Write();
    const ProcessResult result = resuming.Wait();
    EXPECT_EQ(result.exitCode, 3) << result.err;
    EXPECT_NE(result.out.find(": it was interrupted."), std::string::npos) << result.out;
    EXPECT_TRUE(probe.Facts().Flag("stopConfirmed"));
    EXPECT_EQ(daemon.Exchanges(), "fmcSxx");
}

TEST_F(OwedStopSignalTest, WhenItIsMissedNobodyElseGetsTheDaemon) {
    daemon.Start({"--fault", "4:no-answer", "--fault", "5:close-before"});
    auto run = probe.Start(daemon.Address());
    daemon.WaitForExchanges("fmcS");
    run.reset();
    LateTestFile testFile(probe);
    Process resuming(BenchPath(), {"run", "--resume", "run"}, probe.Path(""));
    testFile.WaitForReader();
    const RunProbe other;
    const ProcessResult refused = other.Run(daemon.Address());
    EXPECT_EQ(refused.exitCode, 2) << refused.out;
    EXPECT_NE(refused.err.find("the daemon is in use by process " + std::to_string(resuming.Id())),
              std::string::npos)
        << refused.err;
    EXPECT_EQ(daemon.Exchanges(), "fmcSx");
    testFile.Write();
    const ProcessResult result = resuming.Wait();
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(daemon.Exchanges(), "fmcSxxfmcSxSx");
}

} // namespace
} // namespace Bench
