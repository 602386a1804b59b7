#pragma once

#include <functional>
#include <memory>
#include <string>
#include <vector>

namespace EndToEnd {

/// One connection that a client made to a ScriptedPeer. Failures of the network are ignored: what
/// counts is what the client makes of them.
class Connection {
public:
    struct Socket;
    explicit Connection(std::unique_ptr<Socket> socket);
    ~Connection();
    Connection(const Connection&) = delete;
    Connection& operator=(const Connection&) = delete;

    /// Reads a whole HTTP request: head, and as many bytes of body as its Content-Length says.
    std::string ReadRequest();
    /// Reads up to so many bytes.
    std::string Read(std::size_t size);
    /// Sends the bytes at once, as one segment where the network allows.
    void Send(const std::string& bytes);
    /// Sends the bytes after a pause, so that the client receives them on their own.
    void SendApart(const std::string& bytes);
    /// Closes the connection in order.
    void Close();
    /// Ends the sending side only.
    void FinishSending();
    /// Breaks the connection off.
    void Reset();
    /// Waits until the client has closed its side.
    void WaitForClose();

private:
    std::unique_ptr<Socket> m_socket;
};

/// Listens on a free four-digit port of 127.0.0.1, or another loopback address, and runs a script
/// for each connection, one after the other. Connections stay open until the peer is destroyed
/// unless the script closes them.
class ScriptedPeer {
public:
    /// number counts the connections from 0.
    using Script = std::function<void(Connection& connection, int number)>;

    /// An empty port stands for any free one.
    explicit ScriptedPeer(Script script, const std::string& address = "127.0.0.1",
                          const std::string& port = "");
    ~ScriptedPeer();
    ScriptedPeer(const ScriptedPeer&) = delete;
    ScriptedPeer& operator=(const ScriptedPeer&) = delete;

    std::string Port() const;

private:
    struct System;
    std::unique_ptr<System> m_system;
};

/// A port on which nobody listened a moment ago.
std::string UnusedPort();

} // namespace EndToEnd
