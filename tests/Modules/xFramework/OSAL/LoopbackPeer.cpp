#include "tests/Modules/xFramework/OSAL/LoopbackPeer.h"

#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/read.hpp>
#include <boost/asio/write.hpp>

namespace OSAL {

namespace asio = boost::asio;
using asio::ip::tcp;

struct LoopbackPeer::Sockets {
    asio::io_context context;
    tcp::acceptor acceptor{context, tcp::endpoint(asio::ip::address_v4::loopback(), 0)};
    tcp::socket connection{context};
};

LoopbackPeer::LoopbackPeer() : m_pSockets(std::make_unique<Sockets>()) {}

LoopbackPeer::~LoopbackPeer() = default;

std::string LoopbackPeer::Port() const {
    return std::to_string(m_pSockets->acceptor.local_endpoint().port());
}

void LoopbackPeer::Accept() {
    m_pSockets->connection = m_pSockets->acceptor.accept();
}

void LoopbackPeer::Send(const std::string& text) {
    asio::write(m_pSockets->connection, asio::buffer(text));
}

std::string LoopbackPeer::Receive(std::size_t size) {
    std::string text(size, '\0');
    asio::read(m_pSockets->connection, asio::buffer(text));
    return text;
}

std::string LoopbackPeer::ReceiveAll() {
    std::string text;
    boost::system::error_code end;
    asio::read(m_pSockets->connection, asio::dynamic_buffer(text), end);
    return text;
}

void LoopbackPeer::Close() {
    m_pSockets->connection.close();
}

void LoopbackPeer::Reset() {
    m_pSockets->connection.set_option(asio::socket_base::linger(true, 0));
    m_pSockets->connection.close();
}

void LoopbackPeer::StopListening() {
    m_pSockets->acceptor.close();
}

} // namespace OSAL
