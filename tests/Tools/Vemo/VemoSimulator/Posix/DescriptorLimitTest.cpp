#include "tests/Tools/Vemo/VemoSimulator/Support/Peer.h"
#include "tests/Tools/Vemo/VemoSimulator/Support/RunningSimulator.h"

#include <gmock/gmock.h>

#include <vector>

namespace VemoSimulator {

namespace {

/// The real program with so few descriptors that it can hold ten connections or so.
class LimitedSimulator {
public:
    std::uint16_t Port() const { return m_port; }
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
        // Answered in the order of their coming, so the last one has to wait.
        peers.front().SendCommand("CLI -1 ");
        EXPECT_THAT(peers.front().ReadToEnd(), testing::EndsWith("Done"));
        EXPECT_FALSE(peers.back().HasBytes());
    }
    EXPECT_THAT(Exchange(port, "CLI -1 "), testing::EndsWith("Done"));
    const EndToEnd::ProcessResult result = simulator.End();
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.err, testing::HasSubstr("A connection cannot be accepted: Too many open"));
}

} // namespace VemoSimulator
