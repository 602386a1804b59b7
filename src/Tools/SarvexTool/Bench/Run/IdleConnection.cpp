#include "Tools/SarvexTool/Bench/Run/IdleConnection.h"

#include "Tools/SarvexTool/Bench/Daemon/Exchange.h"

#include <boost/asio/connect.hpp>
#include <boost/asio/steady_timer.hpp>

#include <array>

namespace Bench {

namespace asio = boost::asio;
using boost::system::error_code;
using Tcp = asio::ip::tcp;

class IdleConnection::State : public std::enable_shared_from_this<State> {
public:
    State(EventLoop& loop, const DaemonPeer& daemon, Events events)
        : m_pEndpoints(daemon.Found()),
          m_events(std::move(events)),
          m_socket(loop.Context()),
          m_timer(loop.Context()) {}

    void Start(std::chrono::milliseconds timeout) {
        m_timer.expires_after(timeout);
        m_timer.async_wait([self = shared_from_this(), timeout](const error_code& error) {
            if (!error && !self->m_isConnected)
                self->Fail("cannot be reached within " +
                           SecondsText(std::chrono::duration<double>(timeout).count()) + " s");
        });
        m_pEndpoints->Find([self = shared_from_this()](const std::string& failure) {
            if (failure.empty())
                self->Connect();
            else
                self->Fail(failure);
        });
    }

    void Close() {
        m_isOver = true;
        error_code ignored;
        m_timer.cancel(ignored);
        m_socket.close(ignored);
    }

private:
    void Connect() {
        if (m_isOver)
            return;
        asio::async_connect(
            m_socket, m_pEndpoints->All(),
            [self = shared_from_this()](const error_code& error, const Tcp::endpoint&) {
                if (error)
                    self->Fail(NotReached(error));
                else
                    self->BeConnected();
            });
    }

    void BeConnected() {
        if (m_isOver)
            return;
        m_isConnected = true;
        error_code ignored;
        m_timer.cancel(ignored);
        // A host that is gone without a word is noticed at last.
        m_socket.set_option(asio::socket_base::keep_alive(true), ignored);
        Watch();
        m_events.connected();
    }

    /// What the daemon sends without being asked does not matter.
    void Watch() {
        m_socket.async_read_some(asio::buffer(m_buffer),
                                 [self = shared_from_this()](const error_code& error, std::size_t) {
                                     if (self->m_isOver)
                                         return;
                                     if (!error)
                                         return self->Watch();
                                     self->Close();
                                     self->m_events.lost();
                                 });
    }

    void Fail(const std::string& words) {
        if (m_isOver)
            return;
        Close();
        m_events.failed(words);
    }

    std::shared_ptr<Endpoints> m_pEndpoints;
    Events m_events;
    Tcp::socket m_socket;
    asio::steady_timer m_timer;
    std::array<char, 64> m_buffer{};
    bool m_isConnected = false;
    bool m_isOver = false;
};

IdleConnection::IdleConnection(EventLoop& loop, const DaemonPeer& daemon,
                               std::chrono::milliseconds timeout, Events events)
    : m_pState(std::make_shared<State>(loop, daemon, std::move(events))) {
    m_pState->Start(timeout);
}

IdleConnection::~IdleConnection() {
    m_pState->Close();
}

} // namespace Bench
