#include "Tools/SarvexTool/Bench/Daemon/Exchange.h"

#include <boost/asio/connect.hpp>
#include <boost/asio/write.hpp>

#include <algorithm>

namespace Bench {

namespace asio = boost::asio;

Exchange::Exchange(asio::io_context& context, std::shared_ptr<Endpoints> pEndpoints,
                   std::string request, Events events)
    : m_pEndpoints(std::move(pEndpoints)),
      m_request(std::move(request)),
      m_events(std::move(events)),
      m_socket(context) {}

void Exchange::Start() {
    m_pEndpoints->Find([self = shared_from_this()](const std::string& failure) {
        if (self->m_isOver)
            return;
        if (failure.empty())
            self->Connect();
        else
            self->End(failure);
    });
}

void Exchange::Abandon() {
    m_isOver = true;
    Error ignored;
    m_socket.close(ignored);
}

void Exchange::Connect() {
    asio::async_connect(m_socket, m_pEndpoints->All(),
                        [self = shared_from_this()](const Error& error, const Tcp::endpoint&) {
                            if (self->m_isOver)
                                return;
                            if (error)
                                self->End(NotReached(error));
                            else
                                self->Write();
                        });
}

void Exchange::Write() {
    m_step = ExchangeStep::Sending;
    Error ignored;
    // The end of a long request does not wait until the daemon acknowledges what came before.
    m_socket.set_option(Tcp::no_delay(true), ignored);
    asio::async_write(m_socket, asio::buffer(m_request),
                      [self = shared_from_this()](const Error& error, std::size_t) {
                          if (self->m_isOver)
                              return;
                          if (error)
                              self->End("does not take the request (" + error.message() + ")");
                          else
                              self->Read();
                      });
}

void Exchange::Read() {
    m_step = ExchangeStep::Receiving;
    m_socket.async_read_some(asio::buffer(m_buffer),
                             [self = shared_from_this()](const Error& error, std::size_t size) {
                                 if (self->m_isOver)
                                     return;
                                 if (error)
                                     self->End(error == asio::error::eof ? "" : error.message());
                                 else
                                     self->TakeChunk(size);
                             });
}

void Exchange::TakeChunk(std::size_t size) {
    const std::string_view bytes(m_buffer.data(), size);
    std::string text(bytes.substr(0, bytes.find('\0')));
    const bool isCut = text.empty();
    const bool isLast = m_stream.IsMessageComplete(text);
    if (isLast && !isCut)
        m_step = ExchangeStep::Complete;
    m_events.received(bytes, text);
    if (m_isOver)
        return;
    if (isLast)
        End("");
    else
        Read();
}

void Exchange::End(const std::string& failure) {
    Abandon();
    const Events events = std::move(m_events);
    events.ended(failure);
}

std::string SecondsText(double seconds) {
    std::string text = std::to_string(seconds);
    text.erase(text.find_last_not_of('0') + 1);
    if (text.back() == '.')
        text.pop_back();
    return text;
}

std::string NotReached(const boost::system::error_code& error) {
    // The library's word for a socket that it could not open.
    const bool hasNoSocket = error == asio::error::operation_aborted;
    return "cannot be reached (" +
           (hasNoSocket ? "the system gives this program no socket" : error.message()) + ")";
}

} // namespace Bench
