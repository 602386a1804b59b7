#include "Tools/SarvexTool/Bench/Run/Relay.h"

#include "Tools/SarvexTool/Bench/Run/RelayedRequest.h"

// Asio 1.18 forgets to include it.
#include <utility>

#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>

#include <array>
#include <list>
#include <random>
#include <stdexcept>

namespace Bench {

namespace {

namespace asio = boost::asio;
using boost::system::error_code;
using Tcp = asio::ip::tcp;

/// How many connections may wait for the rest of their request.
constexpr std::size_t mostIncomplete = 4;

struct Incoming {
    explicit Incoming(Tcp::socket given) : socket(std::move(given)) {}

    Tcp::socket socket;
    RelayedRequest request;
    std::array<char, 4096> buffer{};
};

/// Takes a free port, by chance, so that two programs seldom want the same: a low one while there
/// is one, for a daemon that starts again is to find its own free, and those are mostly higher.
void Listen(Tcp::acceptor& acceptor) {
    constexpr std::uint16_t first = 1024;
    constexpr std::uint16_t lastLow = 1999;
    constexpr std::uint16_t last = 9999;
    constexpr int attempts = 1000;
    std::random_device random;
    acceptor.open(Tcp::v4());
    for (int attempt = 0; attempt < attempts; ++attempt) {
        std::uniform_int_distribution<std::uint16_t> ports(first,
                                                           attempt < attempts / 2 ? lastLow : last);
        error_code error;
        // Without the option to reuse the address, which lets two listen on one port on Windows.
        acceptor.bind({asio::ip::address_v4::loopback(), ports(random)}, error);
        if (!error)
            acceptor.listen(asio::socket_base::max_listen_connections, error);
        if (!error)
            return;
    }
    throw std::runtime_error("no port from 1024 to 9999 of 127.0.0.1 is free for the client");
}

} // namespace

class Relay::State : public std::enable_shared_from_this<State> {
public:
    State(EventLoop& loop, Callback requested)
        : m_requested(std::move(requested)), m_acceptor(loop.Context()) {
        Listen(m_acceptor);
    }

    std::uint16_t Port() const { return m_acceptor.local_endpoint().port(); }

    void Accept() {
        m_acceptor.async_accept(
            [self = shared_from_this()](const error_code& error, Tcp::socket socket) {
                if (self->m_isOver)
                    return;
                if (error)
                    throw std::runtime_error("the client's connections cannot be taken (" +
                                             error.message() + ")");
                self->Receive(std::move(socket));
                self->Accept();
            });
    }

    void Reply(std::string bytes) {
        if (!m_pAsking || m_isAnswering)
            return;
        m_isAnswering = true;
        m_answer = std::move(bytes);
        asio::async_write(m_pAsking->socket, asio::buffer(m_answer),
                          [self = shared_from_this()](const error_code&, std::size_t) {
                              if (!self->m_isOver)
                                  self->EndAnswer();
                          });
    }

    void Close() {
        m_isOver = true;
        error_code ignored;
        m_acceptor.close(ignored);
        for (const auto& incoming : m_incomplete)
            incoming->socket.close(ignored);
        if (m_pAsking)
            m_pAsking->socket.close(ignored);
    }

private:
    void Receive(Tcp::socket socket) {
        if (m_incomplete.size() == mostIncomplete)
            Drop(m_incomplete.front());
        Read(m_incomplete.emplace_back(std::make_shared<Incoming>(std::move(socket))));
    }

    void Read(const std::shared_ptr<Incoming>& pIncoming) {
        pIncoming->socket.async_read_some(
            asio::buffer(pIncoming->buffer),
            [self = shared_from_this(), pIncoming](const error_code& error, std::size_t size) {
                if (self->m_isOver || !pIncoming->socket.is_open())
                    return;
                if (error)
                    self->Drop(pIncoming);
                else
                    self->Take(pIncoming, size);
            });
    }

    void Take(const std::shared_ptr<Incoming>& pIncoming, std::size_t size) {
        const RelayedRequest::State state =
            pIncoming->request.Add({pIncoming->buffer.data(), size});
        if (state == RelayedRequest::State::Incomplete)
            return Read(pIncoming);
        if (state == RelayedRequest::State::Foreign)
            return Drop(pIncoming);
        m_incomplete.remove(pIncoming);
        if (m_pAsking)
            m_pNext = pIncoming;
        else
            HandOver(pIncoming);
    }

    /// What is given may be the list's own.
    void Drop(const std::shared_ptr<Incoming>& pIncoming) {
        error_code ignored;
        pIncoming->socket.close(ignored);
        m_incomplete.remove(pIncoming);
    }

    void HandOver(const std::shared_ptr<Incoming>& pIncoming) {
        m_pAsking = pIncoming;
        m_requested(pIncoming->request.Bytes());
    }

    void EndAnswer() {
        error_code ignored;
        m_pAsking->socket.shutdown(Tcp::socket::shutdown_send, ignored);
        m_pAsking->socket.close(ignored);
        m_pAsking.reset();
        m_isAnswering = false;
        m_answer = {};
        if (m_pNext)
            HandOver(std::exchange(m_pNext, nullptr));
    }

    Callback m_requested;
    Tcp::acceptor m_acceptor;
    /// Those whose request is not whole, the oldest first.
    std::list<std::shared_ptr<Incoming>> m_incomplete;
    /// The one whose request was handed over.
    std::shared_ptr<Incoming> m_pAsking;
    /// One whose request was whole before the answer to that one; the latest of them.
    std::shared_ptr<Incoming> m_pNext;
    std::string m_answer;
    bool m_isAnswering = false;
    bool m_isOver = false;
};

Relay::Relay(EventLoop& loop, Callback requested)
    : m_pState(std::make_shared<State>(loop, std::move(requested))) {
    m_pState->Accept();
}

Relay::~Relay() {
    m_pState->Close();
}

std::uint16_t Relay::Port() const {
    return m_pState->Port();
}

void Relay::Reply(std::string bytes) {
    m_pState->Reply(std::move(bytes));
}

} // namespace Bench
