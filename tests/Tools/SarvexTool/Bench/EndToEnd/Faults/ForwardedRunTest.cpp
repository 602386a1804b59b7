#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/Gate.h"

#include <gtest/gtest.h>

#include <array>
#include <atomic>
#include <list>
#include <thread>

// A port forward before the daemon: it takes connections while the daemon is away, and closes them
// at once.

namespace Bench {
namespace {

class Forwarder {
public:
    explicit Forwarder(std::uint16_t daemonPort) : m_daemonPort(daemonPort) {
        m_gate.Start([this](Gate::Socket guest) { Forward(std::move(guest)); });
    }
    ~Forwarder() {
        m_gate.Close();
        Gate::Error ignored;
        for (Gate::Socket& socket : m_sockets)
            socket.shutdown(Gate::Socket::shutdown_both, ignored);
    }
    Forwarder(const Forwarder&) = delete;
    Forwarder& operator=(const Forwarder&) = delete;

    std::string Address() const { return m_gate.Address(); }
    /// How many connections found no daemon.
    int TurnedAway() const { return m_turnedAway; }

private:
    void Forward(Gate::Socket guest) {
        std::optional<Gate::Socket> daemon = m_gate.Connect(m_daemonPort);
        if (!daemon) {
            guest.close();
            ++m_turnedAway;
            return;
        }
        Gate::Socket& one = m_sockets.emplace_back(std::move(guest));
        Gate::Socket& other = m_sockets.emplace_back(std::move(*daemon));
        m_pumps.emplace_back([&one, &other] { Pump(one, other); });
        m_pumps.emplace_back([&one, &other] { Pump(other, one); });
    }

    static void Pump(Gate::Socket& from, Gate::Socket& to) {
        std::array<char, 4096> piece{};
        Gate::Error error;
        for (;;) {
            const std::size_t size = from.read_some(boost::asio::buffer(piece), error);
            if (error)
                break;
            boost::asio::write(to, boost::asio::buffer(piece.data(), size), error);
        }
        // Also when it was broken.
        to.shutdown(Gate::Socket::shutdown_both, error);
    }

    std::uint16_t m_daemonPort;
    std::atomic<int> m_turnedAway = 0;
    Gate m_gate;
    // They end before the gate does.
    std::list<Gate::Socket> m_sockets;
    std::list<std::jthread> m_pumps;
};

class ForwardedRunTest : public testing::Test {
protected:
    ForwardedRunTest() {
        std::string file = "Band,Chains,Bandwidth,Channel\n5,AB,20,36\n";
        for (const int channel : {40, 44, 48})
            file += "-,-,-," + std::to_string(channel) + "\n";
        probe.Write("test.csv", file);
        daemon.Start();
    }

    /// The client pauses after each line.
    std::unique_ptr<EndToEnd::Process> Start() const {
        return probe.Start(forwarder.Address(), {"--client", ProgramPath("SarvexToolClient")});
    }

    RunProbe probe;
    RestartableDaemon daemon;
    Forwarder forwarder{daemon.Port()};
};

TEST_F(ForwardedRunTest, AfterAnOutageARestartIsNoticedAsBefore) {
    const auto run = Start();
    daemon.WaitForExchanges("fmcSx");
    probe.WaitForAnswer(daemon);
    daemon.Kill();
    WaitUntil("the run has met the outage", [this] { return forwarder.TurnedAway() > 0; });
    daemon.Start();
    daemon.WaitForExchanges("Sx");
    probe.WaitForAnswer(daemon);
    daemon.Kill();
    daemon.Start();
    const EndToEnd::ProcessResult result = run->Wait();
    EXPECT_EQ(result.exitCode, 0) << result.out << result.err;
    // What the simulated device gives for the lines, without noise.
    EXPECT_EQ(probe.Result(), "Band,Chains,Bandwidth,Channel,Chain-A Power, Chain B Power\n"
                              "5,AB,20,36,17.86,17.61\n-,-,-,40,17.9,17.65\n"
                              "-,-,-,44,17.94,17.69\n-,-,-,48,17.98,17.73\n")
        << daemon.Exchanges();
    EXPECT_FALSE(probe.Facts().Flag("closesIdleConnections"));
    EXPECT_EQ(result.out.find("Note:"), std::string::npos) << result.out;
}

} // namespace
} // namespace Bench
