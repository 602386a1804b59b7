// Times exchanges with a peer in this program, in turn direct and through the relay of a supervised
// run, as a client sees them: from the connecting to the end mark. Prints a row of the medians and
// of what the relay adds.
//
// usage: relay_bench [ROUNDS]

#include "Tools/SarvexTool/Bench/Run/DaemonExchange.h"
#include "Tools/SarvexTool/Bench/Run/Relay.h"
#include "benchmarks/Client/AnsweringPeer.h"

// Asio 1.18 forgets to include it.
#include <utility>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>
#include <array>
#include <chrono>
#include <cstdio>
#include <memory>
#include <stdexcept>
#include <string>
#include <thread>
#include <vector>

namespace {

namespace asio = boost::asio;
using asio::ip::tcp;
using Bench::AnsweringPeer;

std::uint16_t PortOf(const AnsweringPeer& peer) {
    return static_cast<std::uint16_t>(std::stoi(peer.Port()));
}

/// A relay that passes everything on to one peer, on a thread of its own.
class PassingRelay {
public:
    explicit PassingRelay(const AnsweringPeer& peer)
        : m_daemon(m_loop, {"127.0.0.1", PortOf(peer)}),
          m_relay(m_loop, [this](std::string request) { PassOn(std::move(request)); }),
          m_thread([this] { m_loop.Run(); }) {}
    ~PassingRelay() {
        m_loop.Post([this] { m_loop.Stop(); });
        m_thread.join();
    }
    PassingRelay(const PassingRelay&) = delete;
    PassingRelay& operator=(const PassingRelay&) = delete;

    std::uint16_t Port() const { return m_relay.Port(); }

private:
    void PassOn(std::string request) {
        m_pExchange = std::make_unique<Bench::DaemonExchange>(
            m_loop, m_daemon, std::move(request), std::chrono::seconds(60),
            [this](Bench::ExchangeEnd end) { m_relay.Reply(std::move(end.bytes)); });
    }

    Bench::EventLoop m_loop;
    Bench::DaemonPeer m_daemon;
    std::unique_ptr<Bench::DaemonExchange> m_pExchange;
    Bench::Relay m_relay;
    std::thread m_thread;
};

double MillisecondsOfExchange(std::uint16_t port) {
    const auto start = std::chrono::steady_clock::now();
    asio::io_context context;
    tcp::socket socket(context);
    socket.connect({asio::ip::address_v4::loopback(), port});
    asio::write(socket, asio::buffer(AnsweringPeer::Request));
    std::string answer;
    std::array<char, 512> buffer{};
    while (!answer.ends_with("Done")) {
        boost::system::error_code error;
        const std::size_t size = socket.read_some(asio::buffer(buffer), error);
        if (error)
            throw std::runtime_error("an exchange ended without the end mark");
        answer.append(buffer.data(), size);
    }
    return std::chrono::duration<double, std::milli>(std::chrono::steady_clock::now() - start)
        .count();
}

double Median(std::vector<double> values) {
    std::nth_element(values.begin(),
                     values.begin() + static_cast<std::ptrdiff_t>(values.size() / 2), values.end());
    return values[values.size() / 2];
}

} // namespace

int main(int argc, char* argv[]) {
    constexpr int warmUp = 20;
    const int rounds = argc > 1 ? std::stoi(argv[1]) : 2000;
    const AnsweringPeer peer("Sarvex tool INFO\nstopped\nSarvex tool RETURN CODE\n0\nDone");
    const PassingRelay relay(peer);
    std::vector<double> direct;
    std::vector<double> relayed;
    for (int round = -warmUp; round < rounds; ++round) {
        const double directTime = MillisecondsOfExchange(PortOf(peer));
        const double relayedTime = MillisecondsOfExchange(relay.Port());
        if (round < 0)
            continue;
        direct.push_back(directTime);
        relayed.push_back(relayedTime);
    }
    const double directMedian = Median(direct);
    const double relayedMedian = Median(relayed);
    std::printf("| %-38s | %9.3f ms  | direct %.3f, added %.3f ms | <= 1.00 |\n",
                "one exchange through the relay", relayedMedian, directMedian,
                relayedMedian - directMedian);
    return 0;
}
