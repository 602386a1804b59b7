#include "tests/Tools/Vemo/VemoSimulator/Support/Peer.h"
#include "tests/Tools/Vemo/VemoSimulator/Support/RunningSimulator.h"

#include <gmock/gmock.h>

#include <vector>

namespace VemoSimulator {

TEST(DescriptorLimitTest, ConnectionsBeyondTheLimitWaitUntilOthersClose) {
    const TestSupport::TemporaryDirectory directory;
    EndToEnd::Process limited("/bin/sh",
                              {"-c", "ulimit -n 16 && exec \"$0\" --port 0", SimulatorPath()},
                              directory.Path());
    const std::uint16_t port = PortIn(WaitForLine(limited));
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
    Exchange(port, "CLI -1 -vemo -exit");
    const EndToEnd::ProcessResult result = limited.Wait();
    EXPECT_EQ(result.exitCode, 0);
    EXPECT_THAT(result.err, testing::HasSubstr("A connection cannot be accepted: Too many open"));
}

} // namespace VemoSimulator
