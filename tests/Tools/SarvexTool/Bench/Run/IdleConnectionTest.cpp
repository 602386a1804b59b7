#include "Tools/SarvexTool/Bench/Run/IdleConnection.h"

#include "tests/EndToEnd/Support/ScriptedPeer.h"
#include "tests/Tools/SarvexTool/Bench/Run/LoopFixture.h"

namespace Bench {
namespace {

using EndToEnd::Connection;
using EndToEnd::ScriptedPeer;

class IdleConnectionTest : public LoopFixture {
protected:
    void Connect(const std::string& host, const std::string& port) {
        peer = std::make_unique<DaemonPeer>(
            loop, DaemonAddress{host, static_cast<std::uint16_t>(std::stoi(port))});
        idle = std::make_unique<IdleConnection>(
            loop, *peer, std::chrono::seconds(60),
            IdleConnection::Events{[this] { told += "connected;"; },
                                   [this](const std::string& words) { told += words + ";"; },
                                   [this] { told += "lost;"; }});
    }

    void RunUntilTold(const std::string& text) {
        RunUntil([&] { return told == text; });
    }

    std::string told;
    std::unique_ptr<DaemonPeer> peer;
    std::unique_ptr<IdleConnection> idle;
};

TEST_F(IdleConnectionTest, LastsAsLongAsTheDaemonKeepsIt) {
    std::promise<void> mayEnd;
    const ScriptedPeer daemon([&](Connection& connection, int) {
        connection.Send("not asked for");
        mayEnd.get_future().wait();
        connection.Close();
    });
    Connect("127.0.0.1", daemon.Port());
    RunUntilTold("connected;");
    mayEnd.set_value();
    RunUntilTold("connected;lost;");
}

TEST_F(IdleConnectionTest, IsLostWhenItBreaks) {
    // A reset that comes sooner is one of the attempt to connect.
    std::promise<void> mayBreak;
    const ScriptedPeer daemon([&](Connection& connection, int) {
        mayBreak.get_future().wait();
        connection.Reset();
    });
    Connect("127.0.0.1", daemon.Port());
    RunUntilTold("connected;");
    mayBreak.set_value();
    RunUntilTold("connected;lost;");
}

TEST_F(IdleConnectionTest, LooksAHostNameUp) {
    const ScriptedPeer daemon([](Connection& connection, int) { connection.Close(); });
    Connect("localhost", daemon.Port());
    RunUntilTold("connected;lost;");
}

TEST_F(IdleConnectionTest, TellsWhyThereIsNone) {
    Connect("127.0.0.1", EndToEnd::UnusedPort());
    RunUntil([&] { return !told.empty(); });
    EXPECT_EQ(told.find("cannot be reached ("), 0u) << told;
}

TEST_F(IdleConnectionTest, SendsNothingAndIsDroppedUntold) {
    std::promise<std::string> got;
    const ScriptedPeer daemon(
        [&](Connection& connection, int) { got.set_value(connection.ReadToEnd()); });
    Connect("127.0.0.1", daemon.Port());
    RunUntilTold("connected;");
    idle.reset();
    EXPECT_EQ(got.get_future().get(), "");
    RunWhatIsReady();
    EXPECT_EQ(told, "connected;");
}

} // namespace
} // namespace Bench
