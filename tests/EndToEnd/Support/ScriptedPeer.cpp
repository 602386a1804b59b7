#include "tests/EndToEnd/Support/ScriptedPeer.h"

#include "tests/EndToEnd/Support/Process.h"
#include "tests/EndToEnd/Support/ReservedPort.h"
#include "tests/EndToEnd/Support/SocketTable.h"

// The library's coroutine header lacks this one.
#include <utility>

#include <boost/asio.hpp>

#include <algorithm>
#include <atomic>
#include <chrono>
#include <optional>
#include <stdexcept>
#include <thread>

namespace EndToEnd {

namespace asio = boost::asio;
using asio::ip::tcp;
using Error = boost::system::error_code;

struct Connection::Socket {
    tcp::socket socket;
    std::string received;

    /// Receives once, up to so many bytes; false at the end.
    bool ReceiveMore(std::size_t size = 65536) {
        std::vector<char> buffer(size);
        Error error;
        const std::size_t count = socket.read_some(asio::buffer(buffer), error);
        received.append(buffer.data(), count);
        return !error;
    }
};

Connection::Connection(std::unique_ptr<Socket> socket) : m_socket(std::move(socket)) {}

Connection::~Connection() = default;

std::string Connection::ReadRequest() {
    std::string& bytes = m_socket->received;
    std::size_t headEnd = 0;
    while ((headEnd = bytes.find("\r\n\r\n")) == std::string::npos) {
        if (!m_socket->ReceiveMore())
            return bytes;
    }
    const std::string label = "Content-Length: ";
    const std::size_t length = std::stoul(bytes.substr(bytes.find(label) + label.size()));
    return Read(headEnd + 4 + length);
}

std::string Connection::Read(std::size_t size) {
    std::string& bytes = m_socket->received;
    // What is not asked for stays with the system: a close then breaks the connection off.
    while (bytes.size() < size &&
           m_socket->ReceiveMore(std::min<std::size_t>(size - bytes.size(), 65536))) {
    }
    const std::string result = bytes.substr(0, size);
    bytes.erase(0, size);
    return result;
}

std::string Connection::ReadToEnd() {
    while (m_socket->ReceiveMore()) {
    }
    return std::exchange(m_socket->received, {});
}

namespace {

/// Asks until the answer is yes or it is clear that it never will be.
template <typename Condition>
void WaitFor(const Condition& condition) {
    for (int attempt = 0; attempt < 240'000 && !condition(); ++attempt)
        std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

} // namespace

void Connection::WaitForArrival(std::size_t size) {
    Error error;
    WaitFor([&] {
        return m_socket->received.size() + m_socket->socket.available(error) >= size || error;
    });
}

void Connection::Send(const std::string& bytes) {
    Error ignored;
    asio::write(m_socket->socket, asio::buffer(bytes), ignored);
}

void Connection::WaitUntilTaken() {
    constexpr std::chrono::milliseconds pauseWithoutTable(30);
    Error error;
    const auto own = m_socket->socket.local_endpoint(error).port();
    const auto client = m_socket->socket.remote_endpoint(error).port();
    WaitFor([&] { return error || IsEverythingTaken(own, client, pauseWithoutTable); });
    // The call that took the last byte may still be looking for another one.
    std::this_thread::sleep_for(std::chrono::milliseconds(1));
}

void Connection::SendApart(const std::string& bytes) {
    WaitUntilTaken();
    Send(bytes);
}

void Connection::Close() {
    Error ignored;
    m_socket->socket.shutdown(tcp::socket::shutdown_both, ignored);
    m_socket->socket.close(ignored);
}

void Connection::FinishSending() {
    Error ignored;
    m_socket->socket.shutdown(tcp::socket::shutdown_send, ignored);
}

void Connection::Reset() {
    Error ignored;
    m_socket->socket.set_option(asio::socket_base::linger(true, 0), ignored);
    m_socket->socket.close(ignored);
}

namespace {

tcp::acceptor Listen(asio::io_context& context, const std::string& address, std::uint16_t port) {
    // The constructor sets the option to reuse the address: a later peer may take the port over
    // while connections of this one linger.
    return {context, tcp::endpoint(asio::ip::make_address(address), port)};
}

} // namespace

struct ScriptedPeer::System {
    System(Script givenScript, const std::string& address, const std::string& port)
        : script(std::move(givenScript)),
          reserved(port.empty() ? std::optional<ReservedPort>(ReservedPort()) : std::nullopt),
          acceptor(
              Listen(context, address,
                     reserved ? reserved->Number() : static_cast<std::uint16_t>(std::stoi(port)))),
          endpoint(acceptor.local_endpoint()) {
        KeepFromChildren(static_cast<std::uint64_t>(acceptor.native_handle()));
    }

    void Serve() {
        for (int number = 0; !stopping && acceptor.is_open(); ++number) {
            tcp::socket socket(context);
            Error error;
            acceptor.accept(socket, error);
            if (stopping || error)
                return;
            KeepFromChildren(static_cast<std::uint64_t>(socket.native_handle()));
            socket.set_option(tcp::no_delay(true), error);
            connections.push_back(std::make_unique<Connection>(
                std::make_unique<Connection::Socket>(Connection::Socket{std::move(socket), {}})));
            script(*connections.back(), number);
        }
    }

    Script script;
    asio::io_context context;
    std::optional<ReservedPort> reserved;
    tcp::acceptor acceptor;
    tcp::endpoint endpoint;
    std::vector<std::unique_ptr<Connection>> connections;
    std::atomic<bool> stopping = false;
    std::thread thread;
};

ScriptedPeer::ScriptedPeer(Script script, const std::string& address, const std::string& port)
    : m_system(std::make_unique<System>(std::move(script), address, port)) {
    m_system->thread = std::thread([system = m_system.get()] { system->Serve(); });
}

ScriptedPeer::~ScriptedPeer() {
    Stop();
}

void ScriptedPeer::Stop() {
    if (!m_system->thread.joinable())
        return;
    m_system->stopping = true;
    // Wakes the accept.
    asio::io_context context;
    tcp::socket socket(context);
    Error ignored;
    socket.connect(m_system->endpoint, ignored);
    m_system->thread.join();
}

const std::vector<std::unique_ptr<Connection>>& ScriptedPeer::Connections() const {
    return m_system->connections;
}

void ScriptedPeer::StopListening() {
    const std::lock_guard noStart(StartMutex());
    m_system->acceptor.close();
}

void ScriptedPeer::ListenAgain() {
    m_system->acceptor = tcp::acceptor(m_system->context, m_system->endpoint);
    KeepFromChildren(static_cast<std::uint64_t>(m_system->acceptor.native_handle()));
}

std::string ScriptedPeer::Port() const {
    return std::to_string(m_system->endpoint.port());
}

std::string UnusedPort() {
    static std::vector<ReservedPort> reserved;
    return std::to_string(reserved.emplace_back().Number());
}

} // namespace EndToEnd
