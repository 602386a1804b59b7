#include "Tools/Vemo/VemoSimulator/Connection.h"

#include <boost/asio/buffer.hpp>
#include <boost/asio/steady_timer.hpp>
#include <boost/asio/write.hpp>
#include <boost/beast/core/flat_buffer.hpp>
#include <boost/beast/http/error.hpp>
#include <boost/beast/http/parser.hpp>
#include <boost/beast/http/read.hpp>
#include <boost/beast/http/string_body.hpp>

#include <algorithm>
#include <exception>
#include <utility>

namespace VemoSimulator {

namespace asio = boost::asio;
namespace http = boost::beast::http;
using boost::system::error_code;

namespace {

constexpr std::uint32_t headerLimit = 64 * 1024;

std::string ToText(boost::beast::string_view view) {
    return {view.data(), view.size()};
}

Request ToRequest(http::request<http::string_body>&& message) {
    Request request;
    request.method = ToText(message.method_string());
    request.target = ToText(message.target());
    for (const auto& field : message)
        request.headers.emplace_back(ToText(field.name_string()), ToText(field.value()));
    request.body = std::move(message.body());
    return request;
}

int StatusFor(const error_code& error) {
    constexpr int badRequest = 400;
    constexpr int payloadTooLarge = 413;
    return error == http::error::body_limit ? payloadTooLarge : badRequest;
}

} // namespace

struct Connection::Incoming {
    boost::beast::flat_buffer buffer;
    http::request_parser<http::string_body> parser;
};

struct Connection::Outgoing {
    Outgoing(Delivery&& sent, const asio::any_io_executor& executor)
        : delivery(std::move(sent)), timer(executor) {}

    Delivery delivery;
    std::size_t sentBytes = 0;
    asio::steady_timer timer;
};

Connection::Connection(asio::ip::tcp::socket socket, ConnectionContext& context)
    : m_socket(std::move(socket)), m_context(context), m_pIncoming(std::make_unique<Incoming>()) {}

Connection::~Connection() {
    Close();
}

void Connection::Start() {
    error_code ignored;
    // Each piece of an answer goes out at once.
    m_socket.set_option(asio::ip::tcp::no_delay(true), ignored);
    m_pIncoming->parser.header_limit(headerLimit);
    m_pIncoming->parser.body_limit(m_context.bodyLimit);
    ReadRequest();
}

void Connection::ReadRequest() {
    http::async_read(m_socket, m_pIncoming->buffer, m_pIncoming->parser,
                     [self = shared_from_this()](const error_code& error, std::size_t) {
                         self->OnRequest(error);
                     });
}

void Connection::OnRequest(const error_code& error) {
    static const auto& httpErrors = http::make_error_code(http::error::end_of_stream).category();
    const std::unique_ptr<Incoming> incoming = std::move(m_pIncoming);
    // A client that connects and closes without sending anything is no problem.
    if (error && (error.category() != httpErrors || error == http::error::end_of_stream))
        return Close();
    try {
        if (error)
            Answer(m_context.handler.HandleInvalid(StatusFor(error), error.message()));
        else
            Answer(m_context.handler.Handle(ToRequest(incoming->parser.release())));
    } catch (const std::exception& problem) {
        m_context.log << "A request cannot be answered: " << problem.what() << std::endl;
        Close();
    }
}

void Connection::Answer(Delivery delivery) {
    m_pOutgoing = std::make_unique<Outgoing>(std::move(delivery), m_socket.get_executor());
    WatchClient();
    SendLater(m_pOutgoing->delivery.delay);
}

void Connection::SendLater(std::chrono::milliseconds pause) {
    if (pause.count() == 0)
        return SendPiece();
    m_pOutgoing->timer.expires_after(pause);
    m_pOutgoing->timer.async_wait([self = shared_from_this()](const error_code& error) {
        if (error)
            self->EndAnswer();
        else
            self->SendPiece();
    });
}

void Connection::SendPiece() {
    const Delivery& delivery = m_pOutgoing->delivery;
    const std::size_t sent = m_pOutgoing->sentBytes;
    if (sent == delivery.bytes.size())
        return EndAnswer();
    const std::size_t size = std::min(sent == 0 ? delivery.firstPiece : delivery.nextPieces,
                                      delivery.bytes.size() - sent);
    asio::async_write(m_socket, asio::buffer(delivery.bytes.data() + sent, size),
                      [self = shared_from_this()](const error_code& error, std::size_t written) {
                          self->OnPieceSent(error, written);
                      });
}

void Connection::OnPieceSent(const error_code& error, std::size_t size) {
    m_pOutgoing->sentBytes += size;
    const Delivery& delivery = m_pOutgoing->delivery;
    if (error || m_pOutgoing->sentBytes == delivery.bytes.size())
        EndAnswer();
    else
        SendLater(delivery.pause);
}

void Connection::EndAnswer() {
    const std::unique_ptr<Outgoing> outgoing = std::move(m_pOutgoing);
    ApplyEnding(outgoing->delivery.ending);
    if (outgoing->delivery.endsProgram)
        m_context.endProgram();
}

void Connection::ApplyEnding(Ending ending) {
    if (ending == Ending::Reset)
        Reset();
    else if (ending == Ending::Close || m_hasClientClosed)
        Close();
    else if (ending == Ending::HalfClose)
        HalfClose();
}

void Connection::HalfClose() {
    error_code ignored;
    m_socket.shutdown(asio::ip::tcp::socket::shutdown_send, ignored);
    m_placeInAnswered = m_context.answered.insert(m_context.answered.end(), this);
}

void Connection::WatchClient() {
    m_socket.async_read_some(asio::buffer(m_context.scratch),
                             [self = shared_from_this()](const error_code& error, std::size_t) {
                                 if (error)
                                     self->OnClientClosed(error);
                                 else
                                     self->WatchClient();
                             });
}

void Connection::OnClientClosed(const error_code& error) {
    m_hasClientClosed = true;
    // A client may close its sending side and still wait for the answer.
    if (m_pOutgoing && error == asio::error::eof)
        return;
    if (m_pOutgoing)
        m_pOutgoing->timer.cancel();
    Close();
}

bool Connection::CloseOldestAnswered(ConnectionContext& context) {
    if (context.answered.empty())
        return false;
    context.answered.front()->Close();
    return true;
}

void Connection::Close() {
    if (m_placeInAnswered)
        m_context.answered.erase(*m_placeInAnswered);
    m_placeInAnswered.reset();
    error_code ignored;
    m_socket.close(ignored);
}

void Connection::Reset() {
    error_code ignored;
    m_socket.set_option(asio::socket_base::linger(true, 0), ignored);
    Close();
}

} // namespace VemoSimulator
