#include "tests/EndToEnd/Support/ReservedPort.h"

#include "tests/EndToEnd/Support/Process.h"

// The library's coroutine header lacks this one.
#include <utility>

#include <boost/asio.hpp>

#include <random>
#include <stdexcept>

namespace EndToEnd {

namespace asio = boost::asio;
using asio::ip::tcp;
using asio::ip::udp;
using Error = boost::system::error_code;

/// The port of the same number for datagrams: it is in nobody's way, only one process can have it,
/// and it is given back however the process ends.
struct ReservedPort::Mark {
    asio::io_context context;
    udp::socket socket{context};

    bool Take(std::uint16_t number) {
        Error error;
        socket.open(udp::v4(), error);
        if (!error)
            KeepFromChildren(static_cast<std::uint64_t>(socket.native_handle()));
        socket.bind({asio::ip::address_v4::loopback(), number}, error);
        return !error;
    }
};

namespace {

bool IsFree(std::uint16_t number) {
    asio::io_context context;
    tcp::acceptor acceptor(context);
    Error error;
    acceptor.open(tcp::v4(), error);
    // Connections of an earlier listener may linger.
    acceptor.set_option(tcp::acceptor::reuse_address(true), error);
    acceptor.bind({asio::ip::address_v4::loopback(), number}, error);
    return !error;
}

} // namespace

ReservedPort::ReservedPort() {
    std::random_device random;
    std::uniform_int_distribution<std::uint16_t> numbers(2000, 9999);
    for (int attempt = 0; attempt < 1000; ++attempt) {
        m_number = numbers(random);
        m_mark = std::make_unique<Mark>();
        if (m_mark->Take(m_number) && IsFree(m_number))
            return;
    }
    throw std::runtime_error("no free four-digit port");
}

ReservedPort::~ReservedPort() = default;
ReservedPort::ReservedPort(ReservedPort&& other) noexcept = default;
ReservedPort& ReservedPort::operator=(ReservedPort&& other) noexcept = default;

} // namespace EndToEnd
