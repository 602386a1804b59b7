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
    /// Reads all that comes until the client closes its side; waits for that.
    std::string ReadToEnd();
    /// Waits until so many bytes have come that are not read yet, and reads none of them.
    void WaitForArrival(std::size_t size);
    /// Sends the bytes at once, as one segment where the network allows.
    void Send(const std::string& bytes);
    /// Waits until the client has taken everything that was sent.
    void WaitUntilTaken();
    /// Sends the bytes when the client has taken those before, so that it receives them on their
    /// own.
    void SendApart(const std::string& bytes);
    /// Closes the connection in order.
    void Close();
    /// Ends the sending side only.
    void FinishSending();
    /// Breaks the connection off.
    void Reset();
    /// Waits until the client has closed its side.
    void WaitForClose() { ReadToEnd(); }

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

    /// An empty port means any free one, which is reserved for as long as the peer lives.
    explicit ScriptedPeer(Script script, const std::string& address = "127.0.0.1",
                          const std::string& port = "");
    ~ScriptedPeer();
    ScriptedPeer(const ScriptedPeer&) = delete;
    ScriptedPeer& operator=(const ScriptedPeer&) = delete;

    std::string Port() const;

    /// Refuses connections from now on; those that there are stay. For the script.
    void StopListening();
    /// Accepts connections again, on the same port. For the script.
    void ListenAgain();

    /// Accepts no further connection and waits for the end of the script that runs.
    void Stop();
    /// All connections so far, in order; call Stop before.
    const std::vector<std::unique_ptr<Connection>>& Connections() const;

private:
    struct System;
    std::unique_ptr<System> m_system;
};

/// A port on which nobody listens, and no other test will until this program ends.
std::string UnusedPort();

} // namespace EndToEnd
