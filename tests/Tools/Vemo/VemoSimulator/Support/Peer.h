#pragma once

#include <cstdint>
#include <memory>
#include <string>

namespace VemoSimulator {

/// A client of the simulator on a plain socket of 127.0.0.1. Calls block; each fails the test with
/// an exception where the network does something that the call does not allow for.
class Peer {
public:
    explicit Peer(std::uint16_t port);
    ~Peer();
    Peer(Peer&&) noexcept;

    void Send(const std::string& bytes);

    /// Sends the body as a client sends a command.
    void SendCommand(const std::string& command);

    /// No more bytes will be sent; more can be received.
    void FinishSending();

    /// Exactly so many bytes, or fewer when the connection ends before.
    std::string Read(std::size_t size);

    /// Everything up to the end of the connection.
    std::string ReadToEnd();

    /// Whether the simulator broke the connection off. To be asked after ReadToEnd and before
    /// FinishSending: it sends a byte, which fails on a broken connection only.
    bool WasReset();

    /// Whether bytes can be read without waiting.
    bool HasBytes() const;

    /// Whether the simulator has neither ended its side of the connection nor broken it off.
    bool IsOpen();

private:
    struct Socket;
    std::unique_ptr<Socket> m_pSocket;
};

/// The request that carries a command.
std::string CommandRequest(const std::string& command);

/// What follows the head.
std::string BodyOf(const std::string& answer);

/// Sends a command over a connection of its own; returns the answer's body.
std::string Exchange(std::uint16_t port, const std::string& command);

} // namespace VemoSimulator
