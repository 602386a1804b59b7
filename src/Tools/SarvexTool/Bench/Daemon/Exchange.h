#pragma once

#include "Modules/xFramework/Streams/Sockets/SocketStream.h"
#include "Tools/SarvexTool/Bench/Daemon/Endpoints.h"

#include <array>
#include <cstdint>
#include <functional>
#include <memory>
#include <string>
#include <string_view>

namespace Bench {

/// How far an exchange came.
enum class ExchangeStep : std::uint8_t {
    /// There is no connection.
    Connecting,
    /// The daemon has not taken the whole request.
    Sending,
    Receiving,
    /// The end mark came.
    Complete
};

/// One exchange with a daemon: connects, sends a request and takes the answer off as the client
/// does: in chunks of up to 512 bytes, each up to its first NUL, until one ends in the end mark or
/// is empty. A broken connection ends the answer as a closed one does.
class Exchange : public std::enable_shared_from_this<Exchange> {
public:
    struct Events {
        /// Bytes came; the text is what the client takes of them, without the end mark.
        std::function<void(std::string_view bytes, std::string_view text)> received;
        /// The exchange is over; with what the system says where something broke.
        std::function<void(const std::string& failure)> ended;
    };

    /// The context must outlive the object.
    Exchange(boost::asio::io_context& context, std::shared_ptr<Endpoints> pEndpoints,
             std::string request, Events events);

    /// To be called once, on an object that a shared pointer owns; keeps it alive until the end.
    void Start();

    /// Closes the connection; nothing is told any more.
    void Abandon();

    ExchangeStep Step() const { return m_step; }

private:
    using Tcp = Endpoints::Tcp;
    using Error = boost::system::error_code;

    void Connect();
    void Write();
    void Read();
    void TakeChunk(std::size_t size);
    void End(const std::string& failure);

    std::shared_ptr<Endpoints> m_pEndpoints;
    std::string m_request;
    Events m_events;
    Tcp::socket m_socket;
    std::array<char, Utilities::xFrameworkStreams::Sockets::SocketStream::PieceSize> m_buffer{};
    Utilities::xFrameworkStreams::Sockets::SocketStream m_stream;
    ExchangeStep m_step = ExchangeStep::Connecting;
    bool m_isOver = false;
};

/// A time in seconds without needless digits: "60", "0.5".
std::string SecondsText(double seconds);

/// That a daemon cannot be reached, and why.
std::string NotReached(const boost::system::error_code& error);

} // namespace Bench
