#include "tests/Tools/Vemo/VemoSimulator/Support/Peer.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>

#include <stdexcept>

namespace VemoSimulator {

namespace asio = boost::asio;
using asio::ip::tcp;

namespace {

/// One for all: each has descriptors of its own, and there may be thousands of peers.
asio::io_context& TheContext() {
    static asio::io_context context;
    return context;
}

} // namespace

struct Peer::Socket {
    tcp::socket socket{TheContext()};
};

Peer::Peer(std::uint16_t port) : m_pSocket(std::make_unique<Socket>()) {
    m_pSocket->socket.connect({asio::ip::address_v4::loopback(), port});
}

Peer::~Peer() = default;
Peer::Peer(Peer&&) noexcept = default;

void Peer::Send(const std::string& bytes) {
    asio::write(m_pSocket->socket, asio::buffer(bytes));
}

void Peer::SendCommand(const std::string& command) {
    Send(CommandRequest(command));
}

void Peer::FinishSending() {
    m_pSocket->socket.shutdown(tcp::socket::shutdown_send);
}

std::string Peer::Read(std::size_t size) {
    constexpr std::size_t blockSize = 65536;
    std::string bytes;
    boost::system::error_code error;
    while (!error && bytes.size() < size) {
        const std::size_t start = bytes.size();
        bytes.resize(std::min(size, start + blockSize));
        const std::size_t count = m_pSocket->socket.read_some(
            asio::buffer(bytes.data() + start, bytes.size() - start), error);
        bytes.resize(start + count);
    }
    return bytes;
}

std::string Peer::ReadToEnd() {
    return Read(std::string::npos);
}

bool Peer::WasReset() {
    // The error of the read would not do: wine's server takes a socket's error off the system as
    // soon as the reset arrives. A read that begins after that finds none and tells an orderly end.
    boost::system::error_code error;
    asio::write(m_pSocket->socket, asio::buffer("x", 1), error);
    return error.failed();
}

bool Peer::HasBytes() const {
    return m_pSocket->socket.available() > 0;
}

bool Peer::IsOpen() {
    char byte = 0;
    boost::system::error_code error;
    m_pSocket->socket.non_blocking(true);
    m_pSocket->socket.receive(asio::buffer(&byte, 1), tcp::socket::message_peek, error);
    m_pSocket->socket.non_blocking(false);
    return !error || error == asio::error::would_block;
}

std::string CommandRequest(const std::string& command) {
    return "POST /api/oemtools/command HTTP/1.1\r\nHost: 127.0.0.1:8738\r\n"
           "Connection: keep-alive\r\nContent-Length: " +
           std::to_string(command.size()) + "\r\nContent-Type: text/plain\r\n\r\n" + command;
}

std::string BodyOf(const std::string& answer) {
    const std::size_t end = answer.find("\r\n\r\n");
    if (end == std::string::npos)
        throw std::runtime_error("no head: " + answer);
    return answer.substr(end + 4);
}

std::string Exchange(std::uint16_t port, const std::string& command) {
    Peer peer(port);
    peer.SendCommand(command);
    return BodyOf(peer.ReadToEnd());
}

} // namespace VemoSimulator
