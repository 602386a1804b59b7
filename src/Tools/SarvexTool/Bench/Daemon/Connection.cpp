#include "Tools/SarvexTool/Bench/Daemon/Connection.h"

#include "Modules/xFramework/OSAL/Socket.h"
#include "Modules/xFramework/Streams/Sockets/SocketStream.h"

// Asio 1.18 forgets to include it.
#include <utility>

#include <boost/asio/connect.hpp>
#include <boost/asio/io_context.hpp>
#include <boost/asio/ip/tcp.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>
#include <array>
#include <vector>

namespace Bench {

namespace {

namespace asio = boost::asio;
using boost::system::error_code;
using Tcp = asio::ip::tcp;
using Utilities::xFrameworkStreams::Sockets::SocketStream;

/// The program holds the system's resolver; the first look-up of the system's seam tells it which
/// services it may ask, and Asio uses the same resolver.
void PrepareResolver(const std::string& host, const std::string& port) {
    OSAL::AddressInfo* const addresses = OSAL::ResolveAddress(host, port);
    if (addresses != nullptr)
        OSAL::FreeAddress(addresses);
}

/// One exchange, a step after the other.
class Exchange {
public:
    Exchange(const std::string& host, std::uint16_t port, const std::string& request)
        : m_host(host), m_port(std::to_string(port)), m_request(request) {}

    std::string Run(std::chrono::milliseconds timeout) {
        Resolve();
        m_context.run_for(timeout);
        if (!m_isDone) {
            const auto seconds = static_cast<double>(timeout.count()) / 1000;
            std::string text = std::to_string(seconds);
            text.erase(text.find_last_not_of('0') + 1);
            if (text.back() == '.')
                text.pop_back();
            Fail((m_isConnected ? "gives no whole answer within " : "cannot be reached within ") +
                 text + " s");
        }
        if (!m_failure.empty())
            Fail(m_failure);
        return std::move(m_answer);
    }

private:
    [[noreturn]] void Fail(const std::string& text) const {
        throw ExchangeFailure(text, m_isConnected);
    }

    void Resolve() {
        error_code notNumeric;
        const auto address = asio::ip::make_address(m_host, notNumeric);
        if (!notNumeric) {
            Connect(
                std::array{Tcp::endpoint(address, static_cast<std::uint16_t>(std::stoi(m_port)))});
            return;
        }
        PrepareResolver(m_host, m_port);
        m_resolver.async_resolve(
            m_host, m_port,
            [this](const error_code& error, const Tcp::resolver::results_type& found) {
                if (error)
                    End("cannot be found (" + error.message() + ")");
                else
                    Connect(found);
            });
    }

    template <typename Endpoints>
    void Connect(const Endpoints& endpoints) {
        m_endpoints.assign(endpoints.begin(), endpoints.end());
        asio::async_connect(m_socket, m_endpoints,
                            [this](const error_code& error, const Tcp::endpoint&) {
                                if (error)
                                    End("cannot be reached (" + error.message() + ")");
                                else
                                    Write();
                            });
    }

    void Write() {
        m_isConnected = true;
        asio::async_write(m_socket, asio::buffer(m_request),
                          [this](const error_code& error, std::size_t) {
                              if (error)
                                  End("does not take the request (" + error.message() + ")");
                              else
                                  Read();
                          });
    }

    void Read() {
        m_socket.async_read_some(asio::buffer(m_buffer),
                                 [this](const error_code& error, std::size_t size) {
                                     // As for the client, a broken connection ends the answer.
                                     TakeChunk(error ? 0 : size);
                                 });
    }

    void TakeChunk(std::size_t size) {
        std::string chunk(m_buffer.data(), size);
        chunk.resize(std::min(chunk.find('\0'), chunk.size()));
        const bool isComplete = m_stream.IsMessageComplete(chunk);
        m_answer += chunk;
        if (!isComplete)
            Read();
        else
            End(m_answer.empty() ? "closes the connection without an answer" : "");
    }

    void End(const std::string& failure) {
        m_isDone = true;
        m_failure = failure;
    }

    std::string m_host;
    std::string m_port;
    std::string m_request;
    asio::io_context m_context;
    Tcp::resolver m_resolver{m_context};
    Tcp::socket m_socket{m_context};
    std::vector<Tcp::endpoint> m_endpoints;
    std::array<char, SocketStream::PieceSize> m_buffer{};
    SocketStream m_stream;
    std::string m_answer;
    std::string m_failure;
    bool m_isConnected = false;
    bool m_isDone = false;
};

} // namespace

std::string ExchangeBytes(const std::string& host, std::uint16_t port, const std::string& request,
                          std::chrono::milliseconds timeout) {
    return Exchange(host, port, request).Run(timeout);
}

} // namespace Bench
