#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/RunProbe.h"

#include <gtest/gtest.h>

// The library's coroutine header lacks this one.
#include <utility>

#include <boost/asio.hpp>

#include <array>
#include <atomic>
#include <list>
#include <mutex>
#include <thread>

// A port forward before the daemon: it takes connections while the daemon is away, and closes them
// at once.

namespace Bench {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using Error = boost::system::error_code;

class Forwarder {
public:
    explicit Forwarder(std::uint16_t daemonPort) : m_daemonPort(daemonPort) {
        EndToEnd::KeepFromChildren(static_cast<std::uint64_t>(m_acceptor.native_handle()));
        m_thread = std::thread([this] { Accept(); });
    }
    ~Forwarder() {
        m_isOver = true;
        // Wakes the accept.
        Error ignored;
        tcp::socket(m_context).connect(m_acceptor.local_endpoint(), ignored);
        m_thread.join();
        for (tcp::socket& socket : m_sockets)
            socket.shutdown(tcp::socket::shutdown_both, ignored);
    }
    Forwarder(const Forwarder&) = delete;
    Forwarder& operator=(const Forwarder&) = delete;

    std::string Address() const { return "127.0.0.1:" + std::to_string(m_reserved.Number()); }
    /// How many connections found no daemon.
    int TurnedAway() const { return m_turnedAway; }

private:
    void Accept() {
        for (;;) {
            tcp::socket guest(m_context);
            Error error;
            m_acceptor.accept(guest, error);
            if (error || m_isOver)
                return;
            EndToEnd::KeepFromChildren(static_cast<std::uint64_t>(guest.native_handle()));
            tcp::socket daemon(m_context);
            daemon.connect({asio::ip::address_v4::loopback(), m_daemonPort}, error);
            if (error) {
                guest.close(error);
                ++m_turnedAway;
                continue;
            }
            EndToEnd::KeepFromChildren(static_cast<std::uint64_t>(daemon.native_handle()));
            tcp::socket& one = m_sockets.emplace_back(std::move(guest));
            tcp::socket& other = m_sockets.emplace_back(std::move(daemon));
            m_pumps.emplace_back([&one, &other] { Pump(one, other); });
            m_pumps.emplace_back([&one, &other] { Pump(other, one); });
        }
    }

    static void Pump(tcp::socket& from, tcp::socket& to) {
        std::array<char, 4096> piece{};
        Error error;
        for (;;) {
            const std::size_t size = from.read_some(asio::buffer(piece), error);
            if (error)
                break;
            asio::write(to, asio::buffer(piece.data(), size), error);
        }
        // Also when it was broken.
        to.shutdown(tcp::socket::shutdown_both, error);
    }

    EndToEnd::ReservedPort m_reserved;
    std::uint16_t m_daemonPort;
    asio::io_context m_context;
    tcp::acceptor m_acceptor{m_context,
                             tcp::endpoint(asio::ip::address_v4::loopback(), m_reserved.Number())};
    std::atomic<bool> m_isOver = false;
    std::atomic<int> m_turnedAway = 0;
    std::list<tcp::socket> m_sockets;
    std::list<std::jthread> m_pumps;
    std::thread m_thread;
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
    daemon.Kill();
    WaitUntil("the run has met the outage", [this] { return forwarder.TurnedAway() > 0; });
    daemon.Start();
    daemon.WaitForExchanges("Sx");
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
