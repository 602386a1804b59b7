#include "tests/Tools/Vemo/VemoSimulator/Support/Peer.h"
#include "tests/Tools/Vemo/VemoSimulator/Support/RunningSimulator.h"

#include <gmock/gmock.h>

#include <chrono>
#include <thread>
#include <vector>

namespace VemoSimulator {

namespace {

/// The real program with so few descriptors that it can hold ten connections or so.
class LimitedSimulator {
public:
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
    TestSupport::TemporaryDirectory m_directory;
    EndToEnd::Process m_process{"/bin/sh",
                                {"-c", "ulimit -n 16 && exec \"$0\" --port 0", SimulatorPath()},
                                m_directory.Path()};
    std::uint16_t m_port = PortIn(WaitForLine(m_process));
};

} // namespace

TEST(DescriptorLimitTest, DescriptorsComeBackWhenClientsClose) {
    LimitedSimulator simulator;
    for (int number = 0; number < 50; ++number)
        EXPECT_THAT(Exchange(simulator.Port(), "CLI -1 "), testing::EndsWith("Done"));
    EXPECT_EQ(simulator.End().err, "");
}

TEST(DescriptorLimitTest, ConnectionsBeyondTheLimitWaitUntilOthersClose) {
#ifdef __SANITIZE_ADDRESS__
    GTEST_SKIP() << "the sanitizers read the memory that they check through a pipe of their own, "
                    "and take it for damaged when they get none";
#endif
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

} // namespace VemoSimulator
