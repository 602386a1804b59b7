#include "tests/EndToEnd/Support/Bench.h"
#include "tests/Tools/Vemo/VemoSimulator/Support/Peer.h"
#include "tests/Tools/Vemo/VemoSimulator/Support/RunningSimulator.h"

#include <gmock/gmock.h>

#include <chrono>
#include <thread>
#include <vector>

#ifdef __has_feature
#if __has_feature(address_sanitizer)
#define SARVEX_ADDRESS_SANITIZER
#endif
#endif
#ifdef __SANITIZE_ADDRESS__
#define SARVEX_ADDRESS_SANITIZER
#endif

namespace VemoSimulator {

namespace {

/// The real program with so few descriptors that it can hold ten connections or so.
class LimitedSimulator {
public:
    explicit LimitedSimulator(const std::vector<std::string>& options = {})
        : m_process("/bin/sh", ShellCommand(options), m_directory.Path()) {}

    std::uint16_t Port() const { return m_port; }

    /// Whether the program tells within some seconds that it cannot accept a connection.
    bool TellsOfTheLimit() const {
        for (int attempt = 0; attempt < 1000; ++attempt) {
            if (m_process.ErrSoFar().find("A connection cannot be accepted: Too many open") !=
                std::string::npos)
                return true;
            std::this_thread::sleep_for(std::chrono::milliseconds(10));
        }
        return false;
    }

    EndToEnd::ProcessResult End() {
        Exchange(m_port, "CLI -1 -vemo -exit");
        return m_process.Wait();
    }

private:
    static std::vector<std::string> ShellCommand(const std::vector<std::string>& options) {
        std::vector<std::string> command = {"-c", "ulimit -n 16 && exec \"$0\" \"$@\"",
                                            SimulatorPath(), "--port", "0"};
        command.insert(command.end(), options.begin(), options.end());
        return command;
    }

    TestSupport::TemporaryDirectory m_directory;
    EndToEnd::Process m_process;
    std::uint16_t m_port = PortIn(WaitForLine(m_process));
};

/// Peers that have their answers and keep their connections, more than the program can hold.
std::vector<Peer> ExchangeAndStay(std::uint16_t port) {
    std::vector<Peer> peers;
    for (int number = 0; number < 100; ++number) {
        Peer& peer = peers.emplace_back(port);
        peer.SendCommand("CLI -1 ");
        EXPECT_THAT(peer.ReadToEnd(), testing::EndsWith("Done"));
    }
    return peers;
}

/// What a client leaves that runs the power test of 60 lines, with all of its sockets open to the
/// end.
std::string RunPowerTest(std::uint16_t port) {
    constexpr int lines = 60;
    EndToEnd::Bench bench;
    bench.AddProgram("SarvexToolClientWithoutPauses", "client");
    bench.SetPort(std::to_string(port));
    std::string testFile = "Band,Channel\n";
    for (int line = 0; line < lines; ++line)
        testFile += "5," + std::to_string(40 + line) + "\n";
    bench.Write("test.csv", testFile);
    const EndToEnd::ProcessResult run =
        EndToEnd::Run(bench.Path("client"), {"-wifi-test-by-file", "test.csv"}, bench.Directory());
    EXPECT_EQ(run.exitCode, 0);
    return run.out + run.err + bench.Read("result.csv") + bench.Read("result.xml");
}

class DescriptorLimitTest : public testing::Test {
protected:
    void SetUp() override {
#ifdef SARVEX_ADDRESS_SANITIZER
        GTEST_SKIP()
            << "the sanitizers read the memory that they check through a pipe of their own, "
               "and take it for damaged when they get none";
#endif
    }
};

} // namespace

TEST_F(DescriptorLimitTest, DescriptorsComeBackWhenClientsClose) {
    LimitedSimulator simulator;
    for (int number = 0; number < 50; ++number)
        EXPECT_THAT(Exchange(simulator.Port(), "CLI -1 "), testing::EndsWith("Done"));
    EXPECT_EQ(simulator.End().err, "");
}

TEST_F(DescriptorLimitTest, ConnectionsBeyondTheLimitWaitUntilOthersClose) {
    LimitedSimulator simulator;
    const std::uint16_t port = simulator.Port();
    {
        std::vector<Peer> peers;
        for (int number = 0; number < 20; ++number)
            peers.emplace_back(port);
        EXPECT_TRUE(simulator.TellsOfTheLimit());
        peers.back().SendCommand("CLI -1 ");
        peers.front().SendCommand("CLI -1 ");
        EXPECT_THAT(peers.front().ReadToEnd(), testing::EndsWith("Done"));
        EXPECT_FALSE(peers.back().HasBytes());
    }
    EXPECT_THAT(Exchange(port, "CLI -1 "), testing::EndsWith("Done"));
    EXPECT_EQ(simulator.End().exitCode, 0);
}

TEST_F(DescriptorLimitTest, AnsweredConnectionsGiveWayToNewOnesAndTheirClientsSeeNothingOfIt) {
    LimitedSimulator simulator;
    std::vector<Peer> peers = ExchangeAndStay(simulator.Port());
    for (Peer& peer : peers) {
        EXPECT_EQ(peer.ReadToEnd(), "");
        EXPECT_FALSE(peer.WasReset());
    }
    EXPECT_EQ(simulator.End().err, "");
}

TEST_F(DescriptorLimitTest, ALongPowerTestHasTheResultsThatItHasWithoutALimit) {
    RunningSimulator unlimited;
    const std::string expected = RunPowerTest(unlimited.Port());
    EXPECT_THAT(expected, testing::HasSubstr("\n5,99,1"));
    LimitedSimulator limited;
    EXPECT_EQ(RunPowerTest(limited.Port()), expected);
    EXPECT_EQ(limited.End().err, "");
}

TEST_F(DescriptorLimitTest, AConnectionThatGetsNoAnswerDoesNotGiveWay) {
    LimitedSimulator simulator({"--fault", "1:no-answer"});
    Peer waiting(simulator.Port());
    waiting.SendCommand("CLI -1 ");
    const std::vector<Peer> peers = ExchangeAndStay(simulator.Port());
    EXPECT_TRUE(waiting.IsOpen());
    EXPECT_EQ(simulator.End().err, "");
}

TEST_F(DescriptorLimitTest, AClientThatReadsLateGetsItsWholeAnswer) {
    // The first fits into the system's buffers, the second does not.
    for (const std::size_t size : {200'000U, 30'000'000U}) {
        SCOPED_TRACE(size);
        LimitedSimulator simulator({"--fault", "1:big=" + std::to_string(size)});
        Peer late(simulator.Port());
        late.SendCommand("CLI -1 ");
        const std::vector<Peer> peers = ExchangeAndStay(simulator.Port());
        const std::string answer = late.ReadToEnd();
        EXPECT_GT(answer.size(), size);
        EXPECT_THAT(answer, testing::EndsWith("Done"));
        EXPECT_EQ(simulator.End().err, "");
    }
}

} // namespace VemoSimulator
