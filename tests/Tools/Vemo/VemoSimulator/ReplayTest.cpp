#include "tests/EndToEnd/Support/Process.h"
#include "tests/Support/Files.h"
#include "tests/Tools/Vemo/VemoSimulator/Support/Peer.h"
#include "tests/Tools/Vemo/VemoSimulator/Support/RunningSimulator.h"

#include <gmock/gmock.h>
#include <gtest/gtest.h>

#include <nlohmann/json.hpp>

namespace VemoSimulator {

using EndToEnd::ProcessResult;
using EndToEnd::TextMode;

namespace {

const std::string command = "CLI -1 -vemo -wifi-start";

std::string LineFor(const std::string& answer) {
    return nlohmann::json({{"command", command}, {"answer", answer}, {"end", "answered"}}).dump() +
           "\n";
}

/// The program with the answers in a recording.
class Replay {
public:
    explicit Replay(const std::vector<std::string>& answers,
                    std::vector<std::string> arguments = {"--replay", "exchanges.jsonl"})
        : m_simulator(std::move(arguments), {{"exchanges.jsonl", Lines(answers)}}) {}

    Peer Ask(const std::string& asked = command) {
        Peer peer(m_simulator.Port());
        peer.SendCommand(asked);
        return peer;
    }
    RunningSimulator& Simulator() { return m_simulator; }

private:
    static std::string Lines(const std::vector<std::string>& answers) {
        std::string lines;
        for (const std::string& answer : answers)
            lines += LineFor(answer);
        return lines;
    }

    RunningSimulator m_simulator;
};

} // namespace

TEST(ReplayTest, AnswersGoOutByteByByteInTheirOrder) {
    using namespace std::string_literals;
    const std::string first = "HTTP/1.1 200 OK\r\nX: \xC3\xA4\r\n\r\n\0one\r\nDone"s;
    Replay replay({first, "two"});
    EXPECT_EQ(replay.Ask().ReadToEnd(), first);
    EXPECT_EQ(replay.Ask().ReadToEnd(), "two");
    EXPECT_EQ(replay.Ask().ReadToEnd(), "two");
    const ProcessResult result = replay.Simulator().End();
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_EQ(result.err, "");
}

TEST(ReplayTest, AnUnknownCommandIsToldOnBothSides) {
    Replay replay({"one"});
    const std::string problem =
        "The command 'CLI -1 -vemo -wifi-band 5 x' is not in exchanges.jsonl.";
    EXPECT_EQ(BodyOf(replay.Ask("CLI -1 -vemo -wifi-band 5\nx").ReadToEnd()),
              "Sarvex tool ERROR\n" + problem + "\nSarvex tool RETURN CODE\n1\nDone");
    EXPECT_EQ(replay.Simulator().End().err, TextMode(problem + "\n"));
}

TEST(ReplayTest, FaultsOfTheSendingApply) {
    Replay replay({"0123456789"}, {"--replay", "exchanges.jsonl", "--fault", "1:close-after=3"});
    EXPECT_EQ(replay.Ask().ReadToEnd(), "012");
    EXPECT_EQ(replay.Ask().ReadToEnd(), "0123456789");
}

TEST(ReplayTest, TheRequestLogTellsTheRecordedReturnCode) {
    Replay replay({"\r\n\r\nSarvex tool RETURN CODE\n77\nDone"},
                  {"--replay", "exchanges.jsonl", "--request-log", "requests.json"});
    replay.Ask().ReadToEnd();
    EXPECT_EQ(nlohmann::json::parse(replay.Simulator().ReadFile("requests.json"))["returnCode"],
              "77");
}

TEST(ReplayTest, ABadRecordingEndsTheProgramWithItsLine) {
    const TestSupport::TemporaryDirectory directory;
    directory.Create("bad.jsonl", LineFor("1") + "[]\n");
    const ProcessResult result =
        EndToEnd::Run(SimulatorPath(), {"--replay", "bad.jsonl"}, directory.Path());
    EXPECT_EQ(result.exitCode, 2);
    EXPECT_EQ(result.out, "");
    EXPECT_EQ(result.err, TextMode("vemo: bad.jsonl, line 2: is no JSON object\n"
                                   "Run vemo --help for the options.\n"));
}

} // namespace VemoSimulator
