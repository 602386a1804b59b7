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
#include <string>
#include <system_error>
#include <utility>
#include <vector>

// Resumes a run that was killed in a start, and interrupts that: the stop that the run owes comes
// first.

namespace Bench {
namespace {

using EndToEnd::Interruption;
using EndToEnd::Process;
using EndToEnd::ProcessResult;

constexpr Interruption interrupt{"SIGINT", SIGINT};
constexpr Interruption terminate{"SIGTERM", SIGTERM};

/// Whether a thread of a process waits for the reader of this output: "0x1" or "0x2".
bool WritesTo(const std::string& output, const Process& process) {
    const std::string tasks = "/proc/" + std::to_string(process.Id()) + "/task";
    std::error_code gone;
    for (const auto& task : std::filesystem::directory_iterator(tasks, gone)) {
        std::ifstream file(task.path() / "syscall");
        long call = -1;
        std::string first;
        file >> call >> first;
        if ((call == SYS_write || call == SYS_writev) && first == output)
            return true;
    }
    return false;
}

/// Limits in KiB: a thread's stack has more room than all of a program.
const std::string noThreads = "ulimit -s 2000000 && ulimit -v 1000000";

/// Of a stop, in seconds.
constexpr const char* longerThanATest = "5000";

/// Until a second one is heard as such.
void InterruptUntilItEnds(Process& process) {
    WaitUntil("the second one ends it", [&] {
        process.Interrupt(interrupt);
        return process.HasEnded();
    });
}

class OwedStopSignalTest : public testing::Test {
protected:
    /// Leaves a run that was killed while its first start, the daemon's fourth exchange, had no
    /// answer. The faults are those of later exchanges.
    void KillInAStart(const std::vector<std::string>& faults,
                      const std::string& stopTimeout = "10") {
        std::vector<std::string> options{"--fault", "4:no-answer"};
        for (const std::string& fault : faults)
            options.insert(options.end(), {"--fault", fault});
        daemon.Start(options);
        const auto run = probe.Start(daemon.Address(), {"--stop-timeout", stopTimeout});
        daemon.WaitForExchanges("fmcS");
    }

    /// Besides, that run cannot be locked any more, and another one has its daemon, which is
    /// returned.
    auto KillBeside(const RunProbe& other) {
        KillInAStart({"8:no-answer"});
        std::filesystem::remove(probe.Path("run/run.lock"));
        std::filesystem::create_directory(probe.Path("run/run.lock"));
        auto otherRun = other.Start(daemon.Address());
        daemon.WaitForExchanges("fmcSfmcS");
        return otherRun;
    }

    /// The command writes to the output that nobody reads.
    void ExpectConfirmedUnread(const std::string& command, const std::string& output) {
        KillInAStart({"5:delay=8000"}, "60");
        const FullPipe unread(probe.Path("unread"));
        Process resuming("/bin/sh", {"-c", command, BenchPath()}, probe.Path(""));
        daemon.WaitForExchanges("fmcSx");
        resuming.Interrupt(interrupt);
        WaitUntil("the last words wait", [&] { return WritesTo(output, resuming); });
        InterruptUntilItEnds(resuming);
        EXPECT_EQ(resuming.Wait().exitCode, 3);
    }

    /// SarvexToolBench within limits that a command of a shell sets.
    ProcessResult RunWithin(const std::string& limits, std::vector<std::string> arguments) {
        arguments.insert(arguments.begin(), {"-c", limits + " && exec \"$0\" \"$@\"", BenchPath()});
        return EndToEnd::Run("/bin/sh", arguments, probe.Path(""));
    }

    RunProbe probe;
    RestartableDaemon daemon;
};

TEST_F(OwedStopSignalTest, IsAwaitedWhenResumingIsInterrupted) {
    KillInAStart({"5:delay=8000"}, "60");
    Process resuming(BenchPath(), {"run", "--resume", "run"}, probe.Path(""));
    daemon.WaitForExchanges("fmcSx");
    resuming.Interrupt(terminate);
    const ProcessResult result = resuming.Wait();
    EXPECT_EQ(result.exitCode, 3) << result.err;
    EXPECT_EQ(result.out, "The daemon at " + daemon.Address() + " has confirmed the stop.\n");
    EXPECT_EQ(daemon.Exchanges(), "fmcSx");
}

TEST_F(OwedStopSignalTest, IsMissedWhenResumingIsInterrupted) {
    KillInAStart({"5:no-answer"}, "8");
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
    KillInAStart({"5:no-answer"}, longerThanATest);
    Process resuming(BenchPath(), {"run", "--resume", "run"}, probe.Path(""));
    daemon.WaitForExchanges("fmcSx");
    InterruptUntilItEnds(resuming);
    const ProcessResult result = resuming.Wait();
    EXPECT_EQ(result.exitCode, 4) << result.out;
    EXPECT_EQ(result.err, "The transmitter may still be ON: the daemon at " + daemon.Address() +
                              " was not waited for.\n");
}

TEST_F(OwedStopSignalTest, IsNotAwaitedForTheReaderOfTheLastWordsEither) {
    KillInAStart({"5:no-answer"}, longerThanATest);
    const FullPipe errors(probe.Path("errors"));
    Process resuming("/bin/sh",
                     {"-c", "exec \"$0\" \"$@\" 2> errors", BenchPath(), "run", "--resume", "run"},
                     probe.Path(""));
    daemon.WaitForExchanges("fmcSx");
    InterruptUntilItEnds(resuming);
    EXPECT_EQ(resuming.Wait().exitCode, 4);
}

TEST_F(OwedStopSignalTest, IsConfirmedThoughNobodyReadsIt) {
    ExpectConfirmedUnread("exec \"$0\" run --resume run > unread", "0x1");
}

TEST_F(OwedStopSignalTest, IsConfirmedThoughNobodyReadsItBesideJson) {
    ExpectConfirmedUnread("exec \"$0\" run --resume run --progress json 2> unread", "0x2");
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
    KillInAStart({"5:close-before"});
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
    KillInAStart({"5:close-before"});
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

TEST_F(OwedStopSignalTest, OfARunThatCannotBeLockedIsNotSentIntoAnother) {
    const RunProbe other;
    const auto otherRun = KillBeside(other);
    const ProcessResult refused = probe.RunBench({"run", "--resume", "run"});
    EXPECT_EQ(refused.exitCode, 2) << refused.out;
    EXPECT_TRUE(refused.err.starts_with("cannot ")) << refused.err;
    EXPECT_NE(refused.err.find("run.lock"), std::string::npos) << refused.err;
    EXPECT_NE(refused.err.find("the daemon is in use by process"), std::string::npos)
        << refused.err;
    EXPECT_EQ(daemon.Exchanges(), "fmcSfmcS");
}

// Without a stop to wait for, one request ends it, though nobody reads why.
TEST_F(OwedStopSignalTest, ThatIsNotSentIntoAnotherRunHoldsNoRequest) {
    const RunProbe other;
    const auto otherRun = KillBeside(other);
    const FullPipe unread(probe.Path("unread"));
    Process resuming("/bin/sh", {"-c", "exec \"$0\" run --resume run 2> unread", BenchPath()},
                     probe.Path(""));
    WaitUntil("why waits for its reader", [&] { return WritesTo("0x2", resuming); });
    resuming.Interrupt(terminate);
    const ProcessResult result = resuming.Wait(60);
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(result.exitCode, -1) << "not ended by the signal";
    EXPECT_EQ(daemon.Exchanges(), "fmcSfmcS");
}

// Its test file has changed. Without a reader of why, one request is enough to end it.
TEST_F(OwedStopSignalTest, OfARunThatCannotGoOnEndsAtARequestThoughNobodyReadsWhy) {
    KillInAStart({});
    probe.Write("test.csv", "");
    const FullPipe unread(probe.Path("unread"));
    Process resuming("/bin/sh", {"-c", "exec \"$0\" run --resume run 2> unread", BenchPath()},
                     probe.Path(""));
    WaitUntil("why waits for its reader", [&] { return WritesTo("0x2", resuming); });
    resuming.Interrupt(terminate);
    EXPECT_EQ(resuming.Wait().exitCode, 2);
    EXPECT_EQ(daemon.Exchanges(), "fmcSxx");
}

TEST_F(OwedStopSignalTest, OfARunThatCannotGoOnIsToldWhereItIsReadAfterTheRequest) {
    KillInAStart({"6:close-before"});
    probe.Write("test.csv", "");
    FullPipe late(probe.Path("late"));
    Process resuming("/bin/sh", {"-c", "exec \"$0\" run --resume run 2> late", BenchPath()},
                     probe.Path(""));
    WaitUntil("why waits for its reader", [&] { return WritesTo("0x2", resuming); });
    resuming.Interrupt(terminate);
    std::string words;
    WaitUntil("the request ends it", [&] {
        words += late.ReadOut();
        return resuming.HasEnded();
    });
    words += late.ReadOut();
    EXPECT_EQ(resuming.Wait().exitCode, 4);
    EXPECT_NE(words.find("test.csv"), std::string::npos) << words;
    EXPECT_NE(words.find("\nThe transmitter may still be ON: the daemon at " + daemon.Address()),
              std::string::npos)
        << words;
}

TEST_F(OwedStopSignalTest, OfARunThatCannotGoOnIsLeftAtASecondRequestWithWhy) {
    KillInAStart({"6:no-answer"}, longerThanATest);
    probe.Write("test.csv", "");
    Process resuming(BenchPath(), {"run", "--resume", "run"}, probe.Path(""));
    daemon.WaitForExchanges("fmcSxx");
    InterruptUntilItEnds(resuming);
    const ProcessResult result = resuming.Wait();
    EXPECT_EQ(result.exitCode, 4) << result.out;
    EXPECT_NE(result.err.find("test.csv"), std::string::npos) << result.err;
    EXPECT_TRUE(result.err.ends_with("The transmitter may still be ON: the daemon at " +
                                     daemon.Address() + " was not waited for.\n"))
        << result.err;
}

// It cannot go on when no request to end it would be heard.
TEST_F(OwedStopSignalTest, OfARunWithoutThreadsIsSent) {
    KillInAStart({});
    const ProcessResult result = RunWithin(noThreads, {"run", "--resume", "run"});
    EXPECT_EQ(result.exitCode, 2) << result.err;
    EXPECT_EQ(result.err, "Resource temporarily unavailable\n");
    EXPECT_EQ(result.out, "The daemon at " + daemon.Address() + " has confirmed the stop.\n");
    EXPECT_EQ(daemon.Exchanges(), "fmcSxx");
}

TEST_F(OwedStopSignalTest, OfARunWithoutFilesForItIsToldAsMissed) {
    KillInAStart({});
    for (int files = 4; files <= 8; ++files) {
        SCOPED_TRACE(files);
        const ProcessResult result =
            RunWithin("ulimit -n " + std::to_string(files), {"run", "--resume", "run"});
        EXPECT_EQ(result.exitCode, 4) << result.out;
        EXPECT_NE(result.err.find("The transmitter may still be ON: the daemon at " +
                                  daemon.Address() + " cannot be "),
                  std::string::npos)
            << result.err;
    }
}

// The subcommand stop.

TEST_F(OwedStopSignalTest, ByHandWithoutThreadsIsSent) {
    daemon.Start();
    const ProcessResult result = RunWithin(noThreads, {"stop", "--daemon", daemon.Address()});
    EXPECT_EQ(result.exitCode, 0) << result.err;
    EXPECT_EQ(daemon.Exchanges(), "x");
}

TEST_F(OwedStopSignalTest, ByHandWithoutFilesForItIsToldAsMissed) {
    daemon.Start();
    for (int files = 3; files <= 12; ++files) {
        SCOPED_TRACE(files);
        const ProcessResult result =
            RunWithin("ulimit -n " + std::to_string(files), {"stop", "--daemon", daemon.Address()});
        EXPECT_EQ(result.err.find("Operation canceled"), std::string::npos) << result.err;
        if (result.exitCode != 0) {
            EXPECT_EQ(result.exitCode, 4);
            EXPECT_NE(result.err.find("The transmitter may still be ON: the daemon at " +
                                      daemon.Address() + " cannot be "),
                      std::string::npos)
                << result.err;
        }
    }
    EXPECT_NE(daemon.Exchanges(), "");
}

TEST_F(OwedStopSignalTest, ByHandIsNotAwaitedAfterOneRequest) {
    daemon.Start({"--fault", "1:no-answer"});
    Process stop(BenchPath(), {"stop", "--daemon", daemon.Address(), "--stop-timeout", "5000"},
                 probe.Path(""));
    daemon.WaitForExchanges("x");
    stop.Interrupt(terminate);
    const ProcessResult result = stop.Wait();
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, "The transmitter may still be ON: the daemon at " + daemon.Address() +
                              " was not waited for.\n");
}

TEST_F(OwedStopSignalTest, ByHandIsConfirmedThoughNobodyReadsIt) {
    daemon.Start();
    const FullPipe unread(probe.Path("unread"));
    Process stop(
        "/bin/sh",
        {"-c", "exec \"$0\" \"$@\" > unread", BenchPath(), "stop", "--daemon", daemon.Address()},
        probe.Path(""));
    WaitUntil("the last words wait", [&] { return WritesTo("0x1", stop); });
    stop.Interrupt(interrupt);
    EXPECT_EQ(stop.Wait().exitCode, 0);
}

} // namespace
} // namespace Bench
