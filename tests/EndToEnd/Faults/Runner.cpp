#include "tests/EndToEnd/Faults/Runner.h"

#include "tests/EndToEnd/Support/Bench.h"

#include <gtest/gtest.h>

#include <algorithm>
#include <atomic>
#include <iostream>
#include <memory>
#include <set>
#include <sstream>
#include <thread>

namespace EndToEnd::Faults {

namespace {

// Scenarios wait for their peer as often as they compute.
constexpr unsigned workers = 3;
// What takes longer is told as a hang. A peer that sends byte by byte looks twice into the system's
// table of connections for each; with the thousands of a long run in it that takes wine tens of
// milliseconds, and a busy machine more.
constexpr double timeLimitSeconds = 240;

/// Counts what ran and tells at the end.
class Tally : public testing::Environment {
public:
    void TearDown() override {
        std::cout << "scenarios run: " << run << ", skipped: " << skipped << std::endl;
    }
    std::size_t run = 0;
    std::size_t skipped = 0;
};

// GoogleTest deletes it.
Tally* const tally = new Tally;
[[maybe_unused]] const testing::Environment* const registered =
    testing::AddGlobalTestEnvironment(tally);

/// What became of a scenario.
struct Observation {
    ProcessResult result;
    std::string rows;
    std::string requests;
};

/// Plays the scripts of a scenario, one a connection.
class Player {
public:
    explicit Player(const Scenario& scenario)
        : m_scenario(scenario), m_peer([this](Connection& connection, int number) {
              Play(connection, static_cast<std::size_t>(number));
          }) {}

    std::string Port() const { return m_peer.Port(); }

    /// Everything that reached the peer until the client's end, connection by connection.
    std::string StopAndTakeRequests() {
        m_peer.Stop();
        m_taken.resize(m_peer.Connections().size());
        std::string all;
        for (std::size_t number = 0; number < m_taken.size(); ++number)
            all += m_taken[number] + m_peer.Connections()[number]->ReadToEnd();
        return all;
    }

private:
    void Play(Connection& connection, std::size_t number) {
        // A connection too many shows in the requests that arrive.
        const Script unexpected = {TakeRequest(), Close()};
        const auto& scripts = m_scenario.scripts;
        m_taken.resize(number + 1);
        const Stage stage{m_peer, connection, m_taken[number]};
        for (const Step& step : number < scripts.size() ? scripts[number] : unexpected)
            step(stage);
    }

    const Scenario& m_scenario;
    std::vector<std::string> m_taken;
    ScriptedPeer m_peer;
};

/// Runs scenarios one after the other in a directory of its own.
class Worker {
public:
    explicit Worker(const std::vector<Scenario>& scenarios) {
        std::set<std::string> programs = {"SarvexToolClient"};
        for (const Scenario& scenario : scenarios) {
            if (programs.insert(scenario.client).second)
                m_bench.AddProgram(scenario.client, scenario.client);
        }
    }

    Observation Run(const Scenario& scenario) {
        const auto player = scenario.scripts.empty() ? nullptr : std::make_unique<Player>(scenario);
        m_bench.SetPort(player ? player->Port() : UnusedPort());
        std::filesystem::remove(m_bench.Path("result.csv"));
        if (!scenario.testFile.empty())
            m_bench.Write("test.csv", scenario.testFile);
        Observation observation;
        observation.result = Process(m_bench.Path(ExecutableName(scenario.client)),
                                     scenario.arguments, m_bench.Directory())
                                 .Wait(timeLimitSeconds);
        observation.rows = m_bench.Read("result.csv");
        if (player)
            observation.requests = player->StopAndTakeRequests();
        return observation;
    }

private:
    const Bench m_bench;
};

std::vector<Observation> ObserveAll(const std::vector<Scenario>& scenarios) {
    std::vector<Observation> observations(scenarios.size());
    std::atomic<std::size_t> next = 0;
    // All programs are copied before the first one starts: a program that a child of another thread
    // still has open for writing cannot be run.
    std::vector<std::unique_ptr<Worker>> staff;
    for (unsigned number = 0; number < workers; ++number)
        staff.push_back(std::make_unique<Worker>(scenarios));
    std::vector<std::jthread> threads;
    for (const auto& worker : staff) {
        threads.emplace_back([&] {
            for (std::size_t index = next++; index < scenarios.size(); index = next++)
                observations[index] = worker->Run(scenarios[index]);
        });
    }
    threads.clear();
    return observations;
}

/// A text that is short enough for a message, with its unprintable bytes escaped.
std::string Excerpt(const std::string& text) {
    constexpr std::size_t limit = 400;
    std::ostringstream excerpt;
    excerpt << text.size() << " bytes " << testing::PrintToString(text.substr(0, limit));
    return excerpt.str();
}

std::string Describe(int exitCode, const std::string& out, const std::string& err,
                     const std::string& rows) {
    std::ostringstream text;
    text << "exit code " << exitCode << "\n  out  " << Excerpt(out) << "\n  err  " << Excerpt(err)
         << "\n  rows " << Excerpt(rows) << "\n";
    return text.str();
}

bool IsBeginningAndLineEnd(const std::string& text, const std::string& whole) {
    const std::string lineEnd = TextMode("\n");
    return text.ends_with(lineEnd) &&
           whole.starts_with(text.substr(0, text.size() - lineEnd.size()));
}

bool Fits(const Observation& observed, const Outcome& outcome) {
    const std::string out = TextMode(outcome.out);
    const ProcessResult& result = observed.result;
    return result.exitCode == ExitStatus(outcome.exitCode) && result.err == TextMode(outcome.err) &&
           observed.rows == TextMode(outcome.rows) &&
           (result.out == out || (outcome.outMayBeCut && IsBeginningAndLineEnd(result.out, out)));
}

void CheckOutcome(const Scenario& scenario, const Observation& observed) {
    const auto& permitted = scenario.permitted;
    if (std::any_of(permitted.begin(), permitted.end(),
                    [&](const Outcome& outcome) { return Fits(observed, outcome); }))
        return;
    std::string expected;
    for (const Outcome& outcome : permitted) {
        expected += Describe(ExitStatus(outcome.exitCode), TextMode(outcome.out),
                             TextMode(outcome.err), TextMode(outcome.rows));
    }
    ADD_FAILURE() << Describe(observed.result.exitCode, observed.result.out, observed.result.err,
                              observed.rows)
                  << "where this is right:\n"
                  << expected;
}

void CheckRequests(const Scenario& scenario, const Observation& observed) {
    std::string expected;
    for (const std::string& command : scenario.commands)
        expected += RequestOf(command);
    const bool isRight = scenario.requestIsCut ? expected.starts_with(observed.requests)
                                               : expected == observed.requests;
    EXPECT_TRUE(isRight) << "sent " << Excerpt(observed.requests)
                         << "\nwhere this is right: " << Excerpt(expected);
}

} // namespace

void RunAll(const std::vector<Scenario>& scenarios) {
    const std::vector<Observation> observations = ObserveAll(scenarios);
    for (std::size_t index = 0; index < scenarios.size(); ++index) {
        const Scenario& scenario = scenarios[index];
        SCOPED_TRACE(scenario.name);
        EXPECT_FALSE(observations[index].result.timedOut) << "the client hung";
        CheckOutcome(scenario, observations[index]);
        CheckRequests(scenario, observations[index]);
    }
    tally->run += scenarios.size();
    std::cout << scenarios.size() << " scenarios" << std::endl;
}

void Skip(const std::string& name, const std::string& reason) {
    ++tally->skipped;
    std::cout << "skipped: " << name << ", because " << reason << std::endl;
}

} // namespace EndToEnd::Faults
