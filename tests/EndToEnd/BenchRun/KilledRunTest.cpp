#include "tests/EndToEnd/BenchRun/PowerTests.h"
#include "tests/EndToEnd/Support/RandomMoments.h"

#include <gmock/gmock.h>

#include <array>
#include <chrono>
#include <iostream>
#include <thread>

// Kills what takes part in a supervised run at random moments, and resumes the run to its end.

namespace EndToEnd {
namespace {

enum class Victim { Supervisor, Client, Daemon };

constexpr std::size_t lineCount = 60;
constexpr int complete = 0;
constexpr int endedEarly = 3;

/// How many of each victim were killed.
using Counts = std::array<int, 3>;

/// A run that goes on until it is complete, whatever is killed in between.
class DisturbedRun {
public:
    DisturbedRun(const PowerTests& tests, RandomMoments& moments)
        : m_tests(tests), m_moments(moments) {
        Begin();
    }

    bool IsComplete() const { return m_isComplete; }

    /// Lets it go on to the end.
    void Complete() {
        while (!m_isComplete && !testing::Test::HasFailure())
            TakeEnd(m_pRun->Wait());
    }

    /// Kills one victim at a random moment; false when the run was complete before.
    bool Kill(Victim victim) {
        if (!m_moments.WaitIn(*m_pRun)) {
            TakeEnd(m_pRun->Wait());
            return false;
        }
        switch (victim) {
        case Victim::Supervisor:
            return KillSupervisor();
        case Victim::Client:
            return KillClient();
        case Victim::Daemon:
            break;
        }
        return KillDaemon();
    }

private:
    void Begin() {
        std::filesystem::remove_all(m_tests.Path("run"));
        m_pRun = m_tests.Start(m_tests.NewRun(m_daemon, "test.csv", "run", {"--segment", "11"}));
    }

    bool KillSupervisor() {
        m_pRun->Kill();
        const ProcessResult result = m_pRun->Wait();
        if (!HasBeenKilled(result)) {
            TakeEnd(result);
            return false;
        }
        // It may have had nothing left to do but to end.
        m_isComplete = m_tests.Read("run/run.json").find("\"complete\"") != std::string::npos;
        if (m_isComplete)
            return false;
        if (!std::filesystem::exists(m_tests.Path("run/run.json"))) {
            Begin();
            return true;
        }
        m_owesStop = m_owesStop || HasStarted();
        // What it has sent last is carried out before a command of another's.
        m_tests.Command(m_daemon, {"-wifi-get-mcc"});
        Resume();
        return true;
    }

    bool KillClient() {
        const std::vector<std::uint64_t> clients = ProgramsIn(m_tests.Path("run/client"));
        for (const std::uint64_t client : clients)
            KillProgram(client);
        if (clients.empty())
            return false;
        TakeEnd(m_pRun->Wait());
        return true;
    }

    /// A daemon that comes back has settings of its own; where a supervisor can be halted, it finds
    /// all at once when it goes on.
    bool KillDaemon() {
        const bool isHalted = m_moments.Below(2) == 0 && m_pRun->Halt();
        m_owesStop = m_owesStop || HasStarted();
        m_daemon.Kill();
        m_daemon.StartAgain();
        m_mark = 0;
        if (isHalted) {
            m_tests.Command(m_daemon, {"-wifi-band", "2.4", "-wifi-channel", "3", "-wifi-rate",
                                       "54", "-wifi-tx-chains-from-file", "B"});
            m_mark = Commands(0).size();
            m_pRun->GoOn();
        }
        return true;
    }

    void Resume() {
        m_mark = Commands(0).size();
        m_pRun = m_tests.Start({"run", "--resume", "run"});
        if (!m_owesStop)
            return;
        std::string next;
        while ((next = Commands(m_mark)).find('\n') == std::string::npos && !m_pRun->HasEnded())
            std::this_thread::sleep_for(std::chrono::milliseconds(1));
        next = Commands(m_mark);
        EXPECT_THAT(next.substr(0, next.find('\n')), testing::HasSubstr("-wifi-stop"))
            << "the first command after SIGKILL is no stop: " << m_pRun->ErrSoFar();
        m_owesStop = false;
    }

    void TakeEnd(const ProcessResult& result) {
        m_isComplete = result.exitCode == complete;
        if (m_isComplete)
            return;
        ASSERT_EQ(result.exitCode, endedEarly) << result.out << result.err;
        // Its last stop was confirmed.
        m_owesStop = false;
        Resume();
    }

    /// What the daemon has noted from this byte on.
    std::string Commands(std::size_t mark) const {
        return m_tests.Read("requests.log").substr(mark);
    }

    bool HasStarted() const { return Commands(m_mark).find("-wifi-start") != std::string::npos; }

    static bool HasBeenKilled(const ProcessResult& result) {
        return result.exitCode == KilledStatus();
    }

    const PowerTests& m_tests;
    RandomMoments& m_moments;
    Simulator m_daemon{{"--request-log", m_tests.Path("requests.log")}};
    std::unique_ptr<Process> m_pRun;
    /// Where the commands begin that came from the supervisor that runs now.
    std::size_t m_mark = 0;
    /// Whether a start came after the last stop that was surely the last of a supervisor.
    bool m_owesStop = false;
    bool m_isComplete = false;
};

/// What is killed in a test.
struct Case {
    const char* name;
    std::vector<Victim> victims;

    friend void PrintTo(const Case& test, std::ostream* stream) { *stream << test.name; }
};

class KilledRunTest : public testing::TestWithParam<Case> {
protected:
    KilledRunTest() { tests.Write("test.csv", DependentLines(lineCount)); }

    double SecondsOfWholeRun() const {
        const Simulator daemon;
        const ProcessResult result =
            tests.Supervise(tests.NewRun(daemon, "test.csv", "whole", {"--segment", "11"}));
        EXPECT_EQ(result.exitCode, complete) << result.out << result.err;
        EXPECT_EQ(tests.ResultsIn("whole"), expected);
        return result.seconds;
    }

    PowerTests tests;
    Results expected = {};
};

TEST_P(KilledRunTest, ResumedToItsEndHasTheResultsOfAnUndisturbedOne) {
    RandomMoments moments(GTEST_FLAG_GET(random_seed));
    expected = tests.RunAlone("test.csv");
    ASSERT_EQ(CountHits(expected.csv, "\n"), lineCount + 1);
    ASSERT_EQ(expected.csv.find("NA,NA"), std::string::npos);
    moments.SetLongestWait(SecondsOfWholeRun() / 2);

    Counts counts{};
    int runs = 0;
    for (int killed = 0; killed < KILLED_RUNS; ++runs) {
        ASSERT_LT(runs, 20 * KILLED_RUNS) << "hardly a run lasts until something is killed";
        DisturbedRun run(tests, moments);
        while (!run.IsComplete() && killed < KILLED_RUNS && !HasFailure()) {
            const Victim victim = GetParam().victims[moments.Below(GetParam().victims.size())];
            if (!run.Kill(victim))
                continue;
            ++killed;
            ++counts.at(static_cast<std::size_t>(victim));
        }
        run.Complete();
        ASSERT_FALSE(HasFailure()) << "run " << runs;
        const Results results = tests.ResultsIn("run");
        ASSERT_EQ(results.csv, expected.csv) << "run " << runs;
        ASSERT_EQ(results.xml, expected.xml) << "run " << runs;
        ASSERT_EQ(CountHits(tests.Read("run/journal.jsonl"), "\n"), lineCount);
    }
    std::cout << "killed: supervisor " << counts[0] << ", client " << counts[1] << ", daemon "
              << counts[2] << ", in " << runs << " runs" << std::endl;
}

INSTANTIATE_TEST_SUITE_P(
    , KilledRunTest,
    testing::Values(Case{"Supervisor", {Victim::Supervisor}}, Case{"Client", {Victim::Client}},
                    Case{"Daemon", {Victim::Daemon}},
                    Case{"Any", {Victim::Supervisor, Victim::Client, Victim::Daemon}}),
    [](const auto& test) { return test.param.name; });

} // namespace
} // namespace EndToEnd
