#pragma once

#include "Tools/Vemo/VemoSimulator/IRequestHandler.h"

#include <boost/asio/ip/tcp.hpp>

#include <array>
#include <cstdint>
#include <functional>
#include <list>
#include <memory>
#include <optional>
#include <ostream>

namespace VemoSimulator {

class Connection;

/// What all connections of a server share.
struct ConnectionContext {
    IRequestHandler& handler;
    std::ostream& log;
    std::uint64_t bodyLimit;
    /// Called when an answer that ends the program has been sent.
    std::function<void()> endProgram;
    /// Those whose answer is sent and whose sending side is closed, the oldest first: they only
    /// wait for their clients to close.
    std::list<Connection*> answered;
    /// Takes what clients send after their request; nobody reads it.
    std::array<char, 65536> scratch;
};

/// One connection of a client: takes a request, sends the answer, and waits for the client to
/// close. Keeps itself alive as long as an operation is under way.
class Connection : public std::enable_shared_from_this<Connection> {
public:
    /// context outlives the connection.
    Connection(boost::asio::ip::tcp::socket socket, ConnectionContext& context);
    ~Connection();

    void Start();

    /// Closes the connection that was answered first, so that its descriptor is free at once; false
    /// when there is none. Its client has been told that no more bytes come, still gets those that
    /// are on their way, and sees nothing of it.
    static bool CloseOldestAnswered(ConnectionContext& context);

private:
    struct Incoming;
    struct Outgoing;

    void ReadRequest();
    void OnRequest(const boost::system::error_code& error);
    void Answer(Delivery delivery);
    void SendLater(std::chrono::milliseconds pause);
    void SendPiece();
    void OnPieceSent(const boost::system::error_code& error, std::size_t size);
    void EndAnswer();
    void ApplyEnding(Ending ending);
    void HalfClose();
    void WatchClient();
    void OnClientClosed(const boost::system::error_code& error);
    void Close();
    void Reset();

    boost::asio::ip::tcp::socket m_socket;
    ConnectionContext& m_context;
    /// Only while a request comes in; only while an answer goes out. A connection that just waits
    /// for its client to close costs little more than its socket.
    std::unique_ptr<Incoming> m_pIncoming;
    std::unique_ptr<Outgoing> m_pOutgoing;
    bool m_hasClientClosed = false;
    std::optional<std::list<Connection*>::iterator> m_placeInAnswered;
};

} // namespace VemoSimulator
