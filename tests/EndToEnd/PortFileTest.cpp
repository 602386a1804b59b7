#include "Modules/xFramework/OSAL/Process.h"
#include "tests/EndToEnd/Support/Bench.h"
#include "tests/EndToEnd/Support/ScriptedPeer.h"

#include <gmock/gmock.h>

namespace EndToEnd {
namespace {

const std::string notConnected =
    "Failed to connect to daemon. Please ensure that daemon was started.\n";

class PortFileTest : public testing::Test {
protected:
    PortFileTest()
        : peer([](Connection& connection, int) {
              connection.ReadRequest();
              connection.Send("okDone");
          }) {}

    /// Runs the client and expects that it finds no daemon.
    void ExpectNotConnected() const {
        const ProcessResult result = bench.RunClient({"-x"});
        EXPECT_EQ(result.exitCode, 1);
        EXPECT_EQ(result.out, "");
        EXPECT_EQ(result.err, TextMode(notConnected));
        EXPECT_GE(result.seconds, 0.4);
    }

    ScriptedPeer peer;
    Bench bench;
};

TEST_F(PortFileTest, FifthByteAndWhatFollowsAreIgnored) {
    for (const std::string after : {"", "1", "\r\n", "9 and a remark\n"}) {
        SCOPED_TRACE(testing::PrintToString(after));
        bench.SetPort(peer.Port() + after);
        EXPECT_EQ(bench.RunClient({"-x"}).exitCode, 0);
    }
}

TEST_F(PortFileTest, NobodyListeningCostsTwentyPausesAndEndsWithOne) {
    bench.SetPort(UnusedPort());
    ExpectNotConnected();
}

TEST_F(PortFileTest, FileThatHoldsNoPortConnectsToNothing) {
    // Two digits and a line end: the line end becomes part of the port text.
    const std::string contents[] = {"80\r\n", "", std::string(5, '\0'), "\xFF\xFE\x01\x02\x03",
                                    "port"};
    for (const std::string& content : contents) {
        SCOPED_TRACE(testing::PrintToString(content));
        bench.SetPort(content);
        ExpectNotConnected();
    }
}

TEST_F(PortFileTest, MissingFileConnectsToNothing) {
    ExpectNotConnected();
}

TEST_F(PortFileTest, DirectoryInPlaceOfTheFileConnectsToNothing) {
    std::filesystem::create_directory(bench.Path("Socket.cfg"));
    ExpectNotConnected();
}

TEST_F(PortFileTest, LinkedFileEndsAsAFailedConnectionAtOnce) {
    bench.SetPort(peer.Port());
    std::filesystem::create_hard_link(bench.Path("Socket.cfg"), bench.Path("second name"));
    const ProcessResult result = bench.RunClient({"-x"});
    EXPECT_EQ(result.exitCode, 1);
    EXPECT_EQ(result.err, TextMode(notConnected));
}

TEST_F(PortFileTest, LinkedCommandTableEndsWith256) {
    bench.SetPort(peer.Port());
    bench.Write("SarvexToolCmds.txt", "-x 0\n");
    std::filesystem::create_hard_link(bench.Path("SarvexToolCmds.txt"), bench.Path("second name"));
    const ProcessResult result = bench.RunClient({"-x"});
    EXPECT_EQ(result.exitCode, OSAL::ToExitStatus(256));
    EXPECT_EQ(result.err, TextMode("File " + bench.Path("SarvexToolCmds.txt") + " is a link\n"));
}

} // namespace
} // namespace EndToEnd
