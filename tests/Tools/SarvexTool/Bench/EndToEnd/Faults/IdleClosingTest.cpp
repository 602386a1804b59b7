#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/Gate.h"

#include <gtest/gtest.h>

#include <list>
#include <mutex>
#include <thread>

// A daemon that closes connections which are not used: its restart cannot be seen.

namespace Bench {
namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using Error = boost::system::error_code;

/// Passes each exchange on to a daemon. With each request, all connections end that have not sent
/// one, as those do that wait too long.
class IdleCloser {
public:
    explicit IdleCloser(std::uint16_t daemonPort) : m_daemonPort(daemonPort) {
        m_gate.Start([this](tcp::socket socket) { Take(std::move(socket)); });
    }
    ~IdleCloser() {
        m_gate.Close();
        const std::lock_guard lock(m_mutex);
        Error ignored;
        for (Guest& guest : m_guests)
            guest.socket.shutdown(tcp::socket::shutdown_both, ignored);
    }
    IdleCloser(const IdleCloser&) = delete;
    IdleCloser& operator=(const IdleCloser&) = delete;

    std::string Address() const { return m_gate.Address(); }

private:
    struct Guest {
        explicit Guest(tcp::socket given) : socket(std::move(given)) {}
        tcp::socket socket;
        bool hasSpoken = false;
    };

    void Take(tcp::socket socket) {
        const std::lock_guard lock(m_mutex);
        Guest& guest = m_guests.emplace_back(std::move(socket));
        m_servers.emplace_back([this, &guest] { Serve(guest); });
    }

    void Serve(Guest& guest) {
        const std::string request = ReadRequest(guest.socket);
        if (request.empty())
            return;
        CloseSilent(guest);
        Error ignored;
        std::string answer;
        if (std::optional<tcp::socket> daemon = m_gate.Connect(m_daemonPort)) {
            asio::write(*daemon, asio::buffer(request), ignored);
            asio::read(*daemon, asio::dynamic_buffer(answer), ignored);
        }
        asio::write(guest.socket, asio::buffer(answer), ignored);
        guest.socket.shutdown(tcp::socket::shutdown_send, ignored);
    }

    /// Nothing where the connection ends without one.
    static std::string ReadRequest(tcp::socket& socket) {
        std::string bytes;
        Error error;
        const std::size_t headSize =
            asio::read_until(socket, asio::dynamic_buffer(bytes), "\r\n\r\n", error);
        if (error)
            return "";
        const std::string label = "Content-Length: ";
        const std::size_t size =
            headSize + std::stoul(bytes.substr(bytes.find(label) + label.size()));
        if (bytes.size() < size)
            asio::read(socket, asio::dynamic_buffer(bytes),
                       asio::transfer_exactly(size - bytes.size()), error);
        return bytes;
    }

    void CloseSilent(Guest& speaking) {
        const std::lock_guard lock(m_mutex);
        speaking.hasSpoken = true;
        for (Guest& guest : m_guests) {
            Error ignored;
            if (!guest.hasSpoken)
                guest.socket.shutdown(tcp::socket::shutdown_both, ignored);
        }
    }

    std::uint16_t m_daemonPort;
    Gate m_gate;
    // They end before the gate does.
    std::mutex m_mutex;
    std::list<Guest> m_guests;
    std::list<std::jthread> m_servers;
};

TEST(IdleClosingTest, SettingsGoOutWithEachSegmentAndTheSummarySaysSo) {
    const RunProbe probe;
    std::string file = "Band,Chains,Bandwidth,Channel\n5,AB,20,36\n";
    for (int line = 3; line < 10; ++line)
        file += "-,-,-,40\n";
    probe.Write("test.csv", file);
    RestartableDaemon daemon;
    daemon.Start();
    const IdleCloser closer(daemon.Port());
    const EndToEnd::ProcessResult result = probe.Run(closer.Address(), {"--segment", "2"});
    EXPECT_EQ(result.exitCode, 0) << result.out << result.err;
    EXPECT_TRUE(daemon.Exchanges().ends_with("fmcrSxSxfmcrSxSx")) << daemon.Exchanges();
    EXPECT_TRUE(probe.Facts().Flag("closesIdleConnections"));
    EXPECT_NE(result.out.find("Note: The daemon closes connections that are not used"),
              std::string::npos)
        << result.out;
}

TEST(IdleClosingTest, ItIsRememberedWhenTheRunIsResumed) {
    const RunProbe probe;
    RestartableDaemon daemon;
    daemon.Start({"--fault", "text=-wifi-stop:return-code=5"});
    const IdleCloser closer(daemon.Port());
    EXPECT_EQ(probe.Run(closer.Address(), {"--stop-timeout", "1"}).exitCode, 4);
    ASSERT_TRUE(probe.Facts().Flag("closesIdleConnections"));
    daemon.Kill();
    daemon.Start();
    const EndToEnd::ProcessResult resumed = probe.RunBench({"run", "--resume", "run"});
    EXPECT_EQ(resumed.exitCode, 0) << resumed.out << resumed.err;
    // The two stops alone are too little to notice it anew.
    EXPECT_TRUE(daemon.Exchanges().ends_with("|xx")) << daemon.Exchanges();
    EXPECT_TRUE(probe.Facts().Flag("closesIdleConnections"));
    EXPECT_NE(resumed.out.find("Note: The daemon closes connections that are not used"),
              std::string::npos)
        << resumed.out;
}

TEST(IdleClosingTest, DaemonThatKeepsThemGetsNoneOfThat) {
    const RunProbe probe;
    RestartableDaemon daemon;
    daemon.Start();
    EXPECT_EQ(probe.Run(daemon.Address(), {"--segment", "1"}).exitCode, 0);
    EXPECT_EQ(daemon.Exchanges(), "fmcSxfmcSx");
    EXPECT_FALSE(probe.Facts().Flag("closesIdleConnections"));
}

} // namespace
} // namespace Bench
