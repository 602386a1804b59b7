#include "Tools/SarvexTool/Bench/Run/ClientProcess.h"

#include "tests/EndToEnd/Support/Process.h"
#include "tests/EndToEnd/Support/ScriptedPeer.h"
#include "tests/Support/Files.h"
#include "tests/Tools/SarvexTool/Bench/Run/LoopFixture.h"

#include <chrono>
#include <optional>
#include <system_error>
#include <thread>

namespace Bench {
namespace {

class ClientProcessTest : public LoopFixture {
protected:
    OSAL::ChildStart Start(const std::vector<std::string>& arguments) const {
        return {EndToEnd::TestProgramDirectory() + "/" + EndToEnd::ExecutableName("OSALTestsChild"),
                arguments, directory.Path(), directory.Path("client.log")};
    }

    /// Waits until a child that holds sleeps. Under wine the connection of a program that is ended
    /// in a call of the sockets stays open.
    void AwaitHolding() const {
        while (TestSupport::ReadBytes(directory.Path("held.txt")).empty())
            std::this_thread::sleep_for(std::chrono::milliseconds(2));
    }

    TestSupport::TemporaryDirectory directory;
    std::optional<OSAL::ChildEnd> ended;
    ClientProcess::Callback keep = [this](OSAL::ChildEnd end) { ended = end; };
};

TEST_F(ClientProcessTest, TellsItsEnd) {
    const ClientProcess client(loop, Start({"exit", "5"}), keep);
    RunUntil([&] { return ended.has_value(); });
    EXPECT_EQ(*ended, (OSAL::ChildEnd{5, false}));
}

TEST_F(ClientProcessTest, TellsTheEndOfOneThatIsKilled) {
    std::promise<void> connected;
    const EndToEnd::ScriptedPeer peer([&](EndToEnd::Connection& connection, int) {
        connection.Read(1);
        connected.set_value();
    });
    ClientProcess client(loop, Start({"hold", peer.Port()}), keep);
    connected.get_future().wait();
    EXPECT_FALSE(ended);
    client.Kill();
    RunUntil([&] { return ended.has_value(); });
    EXPECT_NE(*ended, OSAL::ChildEnd{});
}

TEST_F(ClientProcessTest, EndsUntoldWithItsObject) {
    std::promise<void> connected;
    std::promise<void> closed;
    const EndToEnd::ScriptedPeer peer([&](EndToEnd::Connection& connection, int) {
        connection.Read(1);
        connected.set_value();
        connection.WaitForClose();
        closed.set_value();
    });
    {
        const ClientProcess client(loop, Start({"hold", peer.Port()}), keep);
        connected.get_future().wait();
        AwaitHolding();
    }
    closed.get_future().wait();
    RunWhatIsReady();
    EXPECT_FALSE(ended);
}

TEST_F(ClientProcessTest, ThatCannotBeStartedIsAnError) {
    OSAL::ChildStart start = Start({});
    start.program = directory.Path("missing");
    EXPECT_THROW(ClientProcess(loop, start, keep), std::system_error);
}

} // namespace
} // namespace Bench
