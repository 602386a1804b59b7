#pragma once

#include <cstddef>
#include <memory>
#include <string>

namespace OSAL {

/// The other end of a connection on this machine: listens on a free port of 127.0.0.1 from the
/// start, so that a connect succeeds before Accept is called. All operations block.
class LoopbackPeer {
public:
    LoopbackPeer();
    ~LoopbackPeer();

    LoopbackPeer(const LoopbackPeer&) = delete;
    LoopbackPeer& operator=(const LoopbackPeer&) = delete;

    /// The port in decimal.
    std::string Port() const;

    /// Takes the next connection.
    void Accept();

    void Send(const std::string& text);

    /// Exactly size bytes.
    std::string Receive(std::size_t size);

    /// Everything until the other side closes.
    std::string ReceiveAll();

    /// Closes the connection in good order.
    void Close();

    /// Breaks the connection off.
    void Reset();

    /// Gives the port back; from now on nobody listens on it.
    void StopListening();

private:
    struct Sockets;
    std::unique_ptr<Sockets> m_pSockets;
};

} // namespace OSAL
