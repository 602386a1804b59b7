#pragma once

// Public, stable within a major version. A stream belongs to one thread at a time; every operation
// blocks, without a time limit. Errors are raised as Utilities::Exception*. Sizes are in bytes.

#include "Modules/xFramework/OSAL/Socket.h"

#include <string>

namespace Utilities::xFrameworkStreams::Sockets {

/// How the daemon's messages travel over a connected socket. The order of the virtual operations is
/// fixed; those of the client stream follow the destructor.
class SocketStream {
public:
    /// Bytes handed to, and taken from, the socket at a time.
    static constexpr std::size_t PieceSize = 512;

    SocketStream() = default;
    SocketStream(const SocketStream&) = delete;
    SocketStream& operator=(const SocketStream&) = delete;

    /// Reads the port text from the file Socket.cfg beside the program: its first four bytes, up to
    /// a NUL. A missing or short file gives a short or empty text. Raises an
    /// Utilities::Exception* "File ${1} is a link" when the file is a link. The client stream
    /// calls it while it is constructed, so that no subclass of it can give another port.
    virtual void ReadPort(std::string& port);

    /// Sends a text in pieces of PieceSize bytes; one whose length is a multiple of that ends with
    /// an empty piece. Blocks until the system has taken all of it; returns true. Raises an
    /// Utilities::Exception* "Failed Sending message" after closing the socket.
    virtual bool SendBuffer(OSAL::SocketHandle socket, const std::string& message);

    /// Replaces message by what arrives until a chunk completes it, without the end mark. Blocks; a
    /// closed or failed connection ends the message and closes the socket.
    virtual void ReceiveBuffer(std::string& message, OSAL::SocketHandle socket);

    /// Does nothing; keeps its place in the order of the operations.
    virtual void Reserved() {}

    /// Closes the socket; returns what the system says.
    virtual int CloseSocket(OSAL::SocketHandle socket);

    /// Whether a chunk ends the message: an empty one, or one that ends in the mark "Done", which
    /// is cut off.
    virtual bool IsMessageComplete(std::string& chunk);

    virtual ~SocketStream() = default;

private:
    void ReceiveChunk(std::string& chunk, OSAL::SocketHandle socket);
};

} // namespace Utilities::xFrameworkStreams::Sockets
