#include "Tools/Vemo/VemoSimulator/Server.h"

#include "Tools/Vemo/VemoSimulator/Connection.h"

#include <boost/asio/io_context.hpp>
#include <boost/asio/signal_set.hpp>
#include <boost/asio/steady_timer.hpp>

#include <csignal>
#include <random>
#include <stdexcept>

namespace VemoSimulator {

namespace asio = boost::asio;
using asio::ip::tcp;
using boost::system::error_code;

namespace {

constexpr std::uint16_t lowestFourDigitPort = 1024;
constexpr std::uint16_t highestFourDigitPort = 9999;

/// Listens at the endpoint; leaves the acceptor closed on failure.
error_code Listen(tcp::acceptor& acceptor, const tcp::endpoint& endpoint) {
    error_code error;
    acceptor.open(endpoint.protocol(), error);
    // Where the option lets a second program take a port that is in use, it stays off.
    if (!error && VEMO_LISTENER_REUSES_ADDRESS)
        acceptor.set_option(tcp::acceptor::reuse_address(true), error);
    if (!error)
        acceptor.bind(endpoint, error);
    if (!error)
        acceptor.listen(tcp::acceptor::max_listen_connections, error);
    error_code ignored;
    if (error)
        acceptor.close(ignored);
    return error;
}

/// Whether another port may do where this one did not.
bool IsPortTaken(const error_code& error) {
    return error == asio::error::address_in_use || error == asio::error::access_denied;
}

bool IsOutOfDescriptors(const error_code& error) {
    namespace errc = boost::system::errc;
    return error == errc::too_many_files_open || error == errc::too_many_files_open_in_system ||
           error == errc::no_buffer_space;
}

/// Tries each port once, from one chosen by chance: programs started together seldom try the same.
error_code ListenAtFreePort(tcp::acceptor& acceptor, const asio::ip::address& address) {
    constexpr unsigned count = highestFourDigitPort - lowestFourDigitPort + 1;
    const unsigned start = std::random_device{}() % count;
    error_code error = asio::error::address_in_use;
    for (unsigned step = 0; step < count && IsPortTaken(error); ++step) {
        const unsigned port = lowestFourDigitPort + (start + step) % count;
        error = Listen(acceptor, {address, static_cast<std::uint16_t>(port)});
    }
    return error;
}

asio::ip::address ParseAddress(const std::string& text) {
    error_code error;
    asio::ip::address address = asio::ip::make_address(text, error);
    if (error)
        throw std::runtime_error("'" + text + "' is no numeric address");
    return address;
}

} // namespace

class Server::Implementation {
public:
    Implementation(const ServerSettings& settings, IRequestHandler& handler, std::ostream& log)
        : m_context{handler, log, settings.bodyLimit, [this] { m_ioContext.stop(); }, {}, {}},
          m_acceptor(m_ioContext),
          m_retryTimer(m_ioContext),
          m_signals(m_ioContext, SIGINT, SIGTERM, VEMO_CONSOLE_CLOSE_SIGNAL) {
        const asio::ip::address address = ParseAddress(settings.address);
        const error_code error = settings.port == 0 ? ListenAtFreePort(m_acceptor, address)
                                                    : Listen(m_acceptor, {address, settings.port});
        if (error)
            throw std::runtime_error("cannot listen on " + settings.address + ":" +
                                     std::to_string(settings.port) + ": " + error.message());
    }

    std::uint16_t Port() const { return m_acceptor.local_endpoint().port(); }

    void Run() {
        m_signals.async_wait([this](const error_code&, int) { m_ioContext.stop(); });
        Accept();
        m_ioContext.run();
    }

private:
    void Accept() {
        m_acceptor.async_accept([this](const error_code& error, tcp::socket socket) {
            if (error)
                return OnAcceptFailure(error);
            std::make_shared<Connection>(std::move(socket), m_context)->Start();
            Accept();
        });
    }

    void OnAcceptFailure(const error_code& error) {
        // Clients may keep thousands of connections until they end.
        if (IsOutOfDescriptors(error) && Connection::CloseOldestAnswered(m_context))
            return Accept();
        AcceptLater(error);
    }

    /// That may be temporary: when all connections are at work, an answer is sent some time.
    void AcceptLater(const error_code& error) {
        constexpr std::chrono::milliseconds pause(100);
        m_context.log << "A connection cannot be accepted: " << error.message() << std::endl;
        m_retryTimer.expires_after(pause);
        m_retryTimer.async_wait([this](const error_code&) { Accept(); });
    }

    ConnectionContext m_context;
    asio::io_context m_ioContext{1};
    tcp::acceptor m_acceptor;
    asio::steady_timer m_retryTimer;
    asio::signal_set m_signals;
};

Server::Server(const ServerSettings& settings, IRequestHandler& handler, std::ostream& log)
    : m_pImplementation(std::make_unique<Implementation>(settings, handler, log)) {}

Server::~Server() = default;

std::uint16_t Server::Port() const {
    return m_pImplementation->Port();
}

void Server::Run() {
    m_pImplementation->Run();
}

} // namespace VemoSimulator
