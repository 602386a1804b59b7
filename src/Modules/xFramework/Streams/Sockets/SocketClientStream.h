#pragma once

// Public, stable within a major version. A stream belongs to one thread at a time, several streams
// to several threads; every operation blocks, without a time limit. It owns its socket. Errors are
// raised as Utilities::Exception*. On Linux the first connection changes two settings of the
// process: the limit of open files is raised to what the system allows, and names are looked up in
// files and DNS only.

#include "Modules/xFramework/Streams/Sockets/SocketStream.h"

#include <string>

namespace Utilities::xFrameworkStreams::Sockets {

/// A blocking TCP connection to the daemon. It is built connected or not at all. After the daemon
/// has closed, the object holds a closed handle, which the destructor closes once more: see
/// OSAL::SocketHandle for what that handle may be by then.
class SocketClientStream : public SocketStream {
public:
    /// Connects to the host (a name or a numeric address) and the port that ReadPort gives, with up
    /// to 20 attempts and a pause of 20 ms after each failure. Raises an Utilities::Exception*
    /// "Failed Creating socket" after the last; what ReadPort raises passes through at once.
    explicit SocketClientStream(const std::string& host);

    /// Closes the socket.
    ~SocketClientStream() override;

    /// Sends the whole text and returns true, or raises an Utilities::Exception*
    /// "Failed Sending message".
    virtual bool Send(const std::string& message);

    /// Replaces message by the daemon's next message, without its end mark. Blocks until the
    /// message is complete or the connection ends.
    virtual void Receive(std::string& message);

    /// Closes the socket; the object keeps the handle.
    virtual void Close();

private:
    bool TryConnect(const std::string& host, const std::string& port);

    /// 0 before the first attempt, OSAL::InvalidSocket after a refused one.
    OSAL::SocketHandle m_socket = 0;
};

} // namespace Utilities::xFrameworkStreams::Sockets
