#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/LateReader.h"
#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/Posix/FullPipe.h"

#include <gtest/gtest.h>

#include <fcntl.h>
#include <unistd.h>

#include <array>
#include <csignal>
#include <cstdlib>
#include <filesystem>
#include <fstream>

// Ends runs by signals, at each kind of moment.

namespace Bench {
namespace {

using EndToEnd::Interruption;
using EndToEnd::Process;
using EndToEnd::ProcessResult;

constexpr Interruption interrupt{"SIGINT", SIGINT};
constexpr Interruption hangUp{"SIGHUP", SIGHUP};
constexpr Interruption terminate{"SIGTERM", SIGTERM};

/// When a run is interrupted.
struct Moment {
    const char* name;
    /// What makes the moment last.
    const char* fault;
    /// What the daemon has got then.
    const char* exchanges;
};

constexpr Moment inStart{"a start", "4:delay=3000", "fmcS"};
constexpr Moment inStop{"a stop", "5:delay=3000", "fmcSx"};

/// With this device the client pauses for five seconds after each line.
const std::vector<std::string> longPauses{"--mac-type", "16"};

class SignalTest : public testing::Test {
protected:
    SignalTest() {
        // Whoever started the tests may have it ignored.
        std::signal(SIGHUP, SIG_DFL);
    }

    void ExpectInterrupted(const ProcessResult& result) const {
        EXPECT_EQ(result.exitCode, 3) << result.err;
        EXPECT_NE(result.out.find(": it was interrupted."), std::string::npos) << result.out;
        EXPECT_EQ(probe.Facts().Integer("exitCode"), 3);
        EXPECT_TRUE(probe.Facts().Flag("stopConfirmed"));
        EXPECT_FALSE(std::filesystem::exists(probe.Path("run/client")));
    }

    /// The processes that a process has started.
    static std::vector<pid_t> ChildrenOf(std::uint64_t parent) {
        std::vector<pid_t> children;
        const std::string tasks = "/proc/" + std::to_string(parent) + "/task";
        for (const auto& task : std::filesystem::directory_iterator(tasks)) {
            std::ifstream file(task.path() / "children");
            for (pid_t child = 0; file >> child;)
                children.push_back(child);
        }
        return children;
    }

    RunProbe probe;
    RestartableDaemon daemon;
};

TEST_F(SignalTest, AtAnyMomentAStopIsConfirmedFirst) {
    for (const Interruption& signal : {interrupt, terminate, hangUp}) {
        for (const Moment& moment : {inStart, inStop}) {
            SCOPED_TRACE(std::string(signal.name) + " in " + moment.name);
            const RunProbe own;
            RestartableDaemon daemonOfOne;
            daemonOfOne.Start({"--fault", moment.fault});
            const auto run = own.Start(daemonOfOne.Address());
            daemonOfOne.WaitForExchanges(moment.exchanges);
            run->Interrupt(signal);
            const ProcessResult result = run->Wait();
            EXPECT_EQ(result.exitCode, 3) << result.err;
            EXPECT_NE(result.out.find(": it was interrupted."), std::string::npos) << result.out;
            EXPECT_EQ(daemonOfOne.Exchanges(), "fmcSx");
            EXPECT_TRUE(own.Facts().Flag("stopConfirmed"));
        }
    }
}

TEST_F(SignalTest, AnswerToAStartIsAwaitedBeforeTheStop) {
    daemon.Start({"--fault", inStart.fault});
    const auto run = probe.Start(daemon.Address());
    daemon.WaitForExchanges("fmcS");
    run->Interrupt(interrupt);
    ExpectInterrupted(run->Wait());
    const std::vector<JsonFields> exchanges = probe.Lines("exchanges.jsonl");
    ASSERT_EQ(exchanges.size(), 5u);
    EXPECT_EQ(exchanges[3].Text("by"), "client");
    EXPECT_EQ(exchanges[3].Text("end"), "answered");
    EXPECT_EQ(exchanges[4].Text("by"), "supervisor");
    EXPECT_EQ(exchanges[4].Text("end"), "answered");
}

TEST_F(SignalTest, StartThatIsNeverAnsweredIsAwaitedForTheStopTimeout) {
    daemon.Start({"--fault", "4:no-answer"});
    const auto run = probe.Start(daemon.Address(), {"--stop-timeout", "2"});
    daemon.WaitForExchanges("fmcS");
    run->Interrupt(interrupt);
    ExpectInterrupted(run->Wait());
    EXPECT_EQ(daemon.Exchanges(), "fmcSx");
    const std::vector<JsonFields> exchanges = probe.Lines("exchanges.jsonl");
    ASSERT_EQ(exchanges.size(), 5u);
    EXPECT_EQ(exchanges[3].Text("by"), "client");
    EXPECT_EQ(LetterOf(exchanges[3].Text("command")), 'S');
    EXPECT_EQ(exchanges[3].Text("end"), "time-out");
    EXPECT_EQ(exchanges[3].Text("answer"), "");
    EXPECT_EQ(exchanges[4].Text("end"), "answered");
}

TEST_F(SignalTest, BetweenLinesTheStopOfTheLineBeforeIsEnough) {
    daemon.Start(longPauses);
    const auto run = probe.Start(daemon.Address(), {"--client", ProgramPath("SarvexToolClient")});
    daemon.WaitForExchanges("fmcSx");
    run->Interrupt(interrupt);
    ExpectInterrupted(run->Wait());
    EXPECT_EQ(daemon.Exchanges(), "fmcSx");
}

TEST_F(SignalTest, BeforeTheFirstStartNothingIsStopped) {
    daemon.Start({"--fault", "2:no-answer"});
    const auto run = probe.Start(daemon.Address());
    daemon.WaitForExchanges("fm");
    run->Interrupt(interrupt);
    EXPECT_EQ(run->Wait().exitCode, 3);
    EXPECT_EQ(daemon.Exchanges(), "fm");
    EXPECT_FALSE(probe.Facts().Flag("startPassedOn"));
}

TEST_F(SignalTest, WhileTheDaemonIsGoneTheStopIsTriedAndMissed) {
    daemon.Start({"--fault", "4:no-answer"});
    const auto run = probe.Start(daemon.Address(), {"--stop-timeout", "2"});
    daemon.WaitForExchanges("fmcS");
    daemon.Kill();
    WaitUntil("the run waits for the daemon",
              [&] { return run->ErrSoFar().find("waiting for the daemon") != std::string::npos; });
    run->Interrupt(interrupt);
    const ProcessResult result = run->Wait();
    EXPECT_EQ(result.exitCode, 4) << result.err;
    EXPECT_NE(result.out.find("The transmitter may still be ON"), std::string::npos) << result.out;
}

TEST_F(SignalTest, IgnoredFromTheStartAHangUpIsNone) {
    daemon.Start({"--fault", inStart.fault});
    std::vector<std::string> arguments = probe.Arguments(daemon.Address(), {});
    arguments.insert(arguments.begin(), BenchPath());
    Process run("/usr/bin/nohup", arguments, probe.Path(""));
    daemon.WaitForExchanges("fmcS");
    run.Interrupt(hangUp);
    EXPECT_EQ(run.Wait().exitCode, 0);
    EXPECT_EQ(daemon.Exchanges(), "fmcSxSx");
    EXPECT_EQ(probe.Outcomes(), "2 measured, measured; 3 measured, measured");
}

TEST_F(SignalTest, SecondOneEndsTheRunAtOnce) {
    daemon.Start({"--fault", inStart.fault, "--fault", "text=-wifi-stop:no-answer"});
    // As long as no test takes.
    const auto run = probe.Start(daemon.Address(), {"--stop-timeout", "5000"});
    daemon.WaitForExchanges("fmcS");
    run->Interrupt(interrupt);
    daemon.WaitForExchanges("fmcSx");
    run->Interrupt(interrupt);
    const ProcessResult result = run->Wait();
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(result.exitCode, 4) << result.err;
    EXPECT_NE(result.out.find("The transmitter may still be ON"), std::string::npos) << result.out;
    EXPECT_FALSE(probe.Facts().Flag("stopConfirmed"));
    const JsonFields last = probe.Lines("exchanges.jsonl").back();
    EXPECT_EQ(last.Text("by"), "supervisor");
    EXPECT_EQ(LetterOf(last.Text("command")), 'x');
    EXPECT_EQ(last.Text("end"), "time-out");
}

TEST_F(SignalTest, SignalThatComesTwiceIsOneRequest) {
    daemon.Start({"--fault", inStart.fault});
    const auto run = probe.Start(daemon.Address());
    daemon.WaitForExchanges("fmcS");
    run->Interrupt(terminate);
    run->Interrupt(terminate);
    ExpectInterrupted(run->Wait());
    EXPECT_EQ(daemon.Exchanges().back(), 'x');
}

using LateReaderSignalTest = LateReader;

TEST_F(LateReaderSignalTest, FirstOneStopsSafelyAndTheReaderGetsAllLater) {
    daemon.Start({"--fault", AtLastStart("delay=3000")});
    const auto run = Start();
    WaitForLastStart();
    run->Interrupt(interrupt);
    WaitForOutcome();
    EXPECT_EQ(daemon.Exchanges().back(), 'x');
    EXPECT_TRUE(probe.Facts().Flag("stopConfirmed"));
    EXPECT_FALSE(run->HasEnded());
    ExpectAll(run->ReadOut(), lines - 1);
    EXPECT_EQ(run->Wait().exitCode, 3);
}

TEST_F(LateReaderSignalTest, SecondOneEndsTheRunAtOnceWithItsLastWordsElsewhere) {
    daemon.Start({"--fault", AtLastStart("delay=3000"), "--fault", AtLastStop("no-answer")});
    // As long as no test takes.
    const auto run = Start({"--stop-timeout", "5000"});
    WaitForLastStart();
    run->Interrupt(interrupt);
    WaitForLastStop();
    run->Interrupt(interrupt);
    const ProcessResult result = run->Wait();
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(result.exitCode, 4) << result.err;
    EXPECT_NE(result.err.find("The transmitter may still be ON."), std::string::npos) << result.err;
    EXPECT_FALSE(probe.Facts().Flag("stopConfirmed"));
}

TEST_F(LateReaderSignalTest, OneAfterTheRunEndsTheProgramWithTheRunsExitCode) {
    daemon.Start();
    const auto run = Start();
    WaitForOutcome();
    run->Interrupt(terminate);
    const ProcessResult result = run->Wait();
    EXPECT_FALSE(result.timedOut);
    EXPECT_EQ(result.exitCode, 0) << result.err;
}

TEST_F(LateReaderSignalTest, OneAfterTheRunEndsTheProgramWith4WhenNoStopIsConfirmed) {
    daemon.Start({"--fault", "text=-wifi-stop:return-code=5"});
    const auto run = Start({"--stop-timeout", "1"});
    WaitForOutcome();
    run->Interrupt(interrupt);
    EXPECT_EQ(run->Wait().exitCode, 4);
}

/// A terminal whose other end is here.
class Terminal {
public:
    Terminal() : m_master(::posix_openpt(O_RDWR | O_NOCTTY | O_NONBLOCK | O_CLOEXEC)) {
        ::grantpt(m_master);
        ::unlockpt(m_master);
    }
    ~Terminal() { ::close(m_master); }
    Terminal(const Terminal&) = delete;
    Terminal& operator=(const Terminal&) = delete;

    std::string Name() const { return ::ptsname(m_master); }

    /// What it has shown so far.
    const std::string& Text() {
        std::array<char, 4096> piece{};
        for (ssize_t size = 0; (size = ::read(m_master, piece.data(), piece.size())) > 0;)
            m_text.append(piece.data(), static_cast<std::size_t>(size));
        return m_text;
    }

private:
    int m_master;
    std::string m_text;
};

TEST_F(LateReaderSignalTest, TerminalIsToldAllWhileAnotherReaderDoesNotRead) {
    Terminal terminal;
    daemon.Start({"--fault", "text=-wifi-stop:return-code=5"});
    std::vector<std::string> arguments =
        probe.Arguments(daemon.Address(), {"--progress", "json", "--stop-timeout", "1"});
    arguments.insert(arguments.begin(),
                     {"-c", "exec \"$0\" \"$@\" 2> " + terminal.Name(), BenchPath()});
    Process run("/bin/sh", arguments, probe.Path(""),
                {.output = Process::Output::Pipe, .inputFile = "", .areArgumentsUtf8 = false});
    WaitUntil("the terminal shows the last words", [&] {
        return terminal.Text().find("SarvexToolBench stop --daemon") != std::string::npos;
    });
    EXPECT_FALSE(run.HasEnded());
    ExpectAll(run.ReadOut(), lines);
    EXPECT_EQ(run.Wait().exitCode, 4);
}

TEST_F(SignalTest, ClientThatIsKilledEndsTheRunAfterAStop) {
    daemon.Start({"--fault", "4:no-answer"});
    const auto run = probe.Start(daemon.Address(), {"--stop-timeout", "2"});
    daemon.WaitForExchanges("fmcS");
    const std::vector<pid_t> clients = ChildrenOf(run->Id());
    ASSERT_EQ(clients.size(), 1u);
    ::kill(clients.front(), SIGKILL);
    const ProcessResult result = run->Wait();
    EXPECT_EQ(result.exitCode, 3) << result.err;
    EXPECT_NE(result.out.find("killed by signal 9"), std::string::npos) << result.out;
    EXPECT_EQ(daemon.Exchanges(), "fmcSx");
    EXPECT_TRUE(probe.Facts().Flag("stopConfirmed"));
}

TEST_F(SignalTest, KilledRunLeavesNoClientAndIsStoppedWhenItIsResumed) {
    daemon.Start({"--fault", "4:no-answer"});
    auto run = probe.Start(daemon.Address());
    daemon.WaitForExchanges("fmcS");
    const std::vector<pid_t> clients = ChildrenOf(run->Id());
    ASSERT_EQ(clients.size(), 1u);
    run.reset();
    WaitUntil("the client ends with the run",
              [&] { return !std::filesystem::exists("/proc/" + std::to_string(clients.front())); });
    EXPECT_EQ(probe.RunBench({"run", "--resume", "run"}).exitCode, 0);
    EXPECT_EQ(daemon.Exchanges(), "fmcSxxfmcSxSx");
}

TEST_F(SignalTest, RunWithoutAnOwnFolderMeasuresBeforeItsNameIsRead) {
    daemon.Start();
    // Nothing that is warned of, which would wait for its reader.
    probe.Write("test.csv",
                "Band,Chains,Bandwidth,Channel,Bandwidth Mode,Rate,Mode,Resource Unit,Specific "
                "Resource unit,Large RU Size\n5,AB,20,36,HE,MCS9,SISO,242,0,none\n");
    FullPipe errors(probe.Path("errors"));
    Process run("/bin/sh",
                {"-c", "exec \"$0\" \"$@\" 2> errors", BenchPath(), "run", "test.csv", "--daemon",
                 daemon.Address(), "--client", ProgramPath("SarvexToolClientWithoutPauses")},
                probe.Path(""));
    daemon.WaitForExchanges("fmcSx");
    std::string text;
    WaitUntil("all is read", [&] {
        text += errors.ReadOut();
        return run.HasEnded();
    });
    text += errors.ReadOut();
    EXPECT_EQ(run.Wait().exitCode, 0) << text;
    EXPECT_TRUE(text.starts_with("The run is in runs/test-")) << text;
}

TEST_F(SignalTest, RowThatDoesNotPassWhileTheRunEndsChangesNoExitCode) {
    std::vector<std::string> options = longPauses;
    options.insert(options.end(), {"--fault", "4:return-code=2"});
    daemon.Start(options);
    const auto run =
        probe.Start(daemon.Address(), {"--fail-fast", "--client", ProgramPath("SarvexToolClient")});
    WaitUntil("the client has written the row", [this] {
        const std::string name = probe.Path("run/client/result.csv");
        return std::filesystem::exists(name) &&
               TestSupport::ReadBytes(name).find("5,AB,20,36,") != std::string::npos;
    });
    run->Interrupt(interrupt);
    ExpectInterrupted(run->Wait());
    EXPECT_EQ(probe.Outcomes(), "2 refused, refused");
}

TEST_F(SignalTest, NothingIsSaidAfterTheTransmitterThatMayBeOn) {
    daemon.Start({"--fault", "text=-wifi-stop:return-code=5"});
    // The first of the limits fits nothing, which is warned of.
    probe.Write("limits.csv", "Channel,Chain,Min,Max\n44,*,*,*\n*,*,*,*\n");
    // Both streams in one file, as on a console.
    const std::string both = "\"$0\" \"$@\" 2>&1";
    std::vector<std::string> arguments =
        probe.Arguments(daemon.Address(), {"--limits", "limits.csv", "--stop-timeout", "1"});
    arguments.insert(arguments.begin(), {"-c", both, BenchPath()});
    const ProcessResult result = EndToEnd::Run("/bin/sh", arguments, probe.Path(""));
    EXPECT_EQ(result.exitCode, 4);
    EXPECT_NE(result.out.find("the line fits no measurement"), std::string::npos) << result.out;
    EXPECT_TRUE(result.out.ends_with("SarvexToolBench stop --daemon " + daemon.Address() + "\n"))
        << result.out;
}

TEST_F(SignalTest, FolderThatVanishesEndsTheRunAfterAStop) {
    daemon.Start({"--fault", inStart.fault});
    const auto run = probe.Start(daemon.Address());
    daemon.WaitForExchanges("fmcS");
    std::filesystem::remove_all(probe.Path("run"));
    const ProcessResult result = run->Wait();
    EXPECT_EQ(result.exitCode, 3) << result.out;
    EXPECT_EQ(daemon.Exchanges().back(), 'x');
    EXPECT_NE(result.out.find("facts of the run could not be written"), std::string::npos)
        << result.out;
    EXPECT_EQ(result.out.find("--resume"), std::string::npos) << result.out;
}

} // namespace
} // namespace Bench
