#pragma once

#include "tests/Tools/SarvexTool/Bench/EndToEnd/Faults/RunProbe.h"

// The library's coroutine header lacks this one.
#include <utility>

#include <boost/asio.hpp>

#include <atomic>
#include <cstdint>
#include <functional>
#include <optional>
#include <string>
#include <thread>

namespace Bench {

/// Takes the connections that are meant for a daemon, on a thread of its own. Before Start they
/// wait.
class Gate {
public:
    using Socket = boost::asio::ip::tcp::socket;
    using Error = boost::system::error_code;

    Gate() { EndToEnd::KeepFromChildren(static_cast<std::uint64_t>(m_acceptor.native_handle())); }
    ~Gate() { Close(); }
    Gate(const Gate&) = delete;
    Gate& operator=(const Gate&) = delete;

    /// The function gets each connection, on that thread. What it uses is made before.
    void Start(std::function<void(Socket)> take) {
        m_take = std::move(take);
        m_thread = std::thread([this] { Accept(); });
    }

    std::string Address() const { return "127.0.0.1:" + std::to_string(m_reserved.Number()); }

    /// A connection to a daemon; none where it is away.
    std::optional<Socket> Connect(std::uint16_t daemonPort) {
        Socket daemon(m_context);
        Error error;
        daemon.connect({boost::asio::ip::address_v4::loopback(), daemonPort}, error);
        if (error)
            return std::nullopt;
        EndToEnd::KeepFromChildren(static_cast<std::uint64_t>(daemon.native_handle()));
        return daemon;
    }

    /// The function is called no more.
    void Close() {
        if (!m_thread.joinable())
            return;
        m_isOver = true;
        // Wakes the accept.
        Error ignored;
        Socket(m_context).connect(m_acceptor.local_endpoint(), ignored);
        m_thread.join();
    }

private:
    void Accept() {
        for (;;) {
            Socket socket(m_context);
            Error error;
            m_acceptor.accept(socket, error);
            if (error || m_isOver)
                return;
            EndToEnd::KeepFromChildren(static_cast<std::uint64_t>(socket.native_handle()));
            m_take(std::move(socket));
        }
    }

    EndToEnd::ReservedPort m_reserved;
    std::function<void(Socket)> m_take;
    boost::asio::io_context m_context;
    boost::asio::ip::tcp::acceptor m_acceptor{
        m_context, {boost::asio::ip::address_v4::loopback(), m_reserved.Number()}};
    std::atomic<bool> m_isOver = false;
    std::thread m_thread;
};

} // namespace Bench
