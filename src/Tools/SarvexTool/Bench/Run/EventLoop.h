#pragma once

#include <functional>
#include <memory>

namespace boost::asio {
class io_context;
} // namespace boost::asio

namespace Bench {

/// The thread's loop that calls back for sockets, timers and processes. It must outlive all that is
/// made with it.
class EventLoop {
public:
    EventLoop();
    ~EventLoop();
    EventLoop(const EventLoop&) = delete;
    EventLoop& operator=(const EventLoop&) = delete;

    /// Calls back what happens, until Stop. Throws what a callback throws, and may be called again
    /// afterwards.
    void Run();

    /// Ends Run after the callback that it is in; to be called from there.
    void Stop();

    /// Calls the function from Run. Any thread may call it.
    void Post(std::function<void()> function);

    boost::asio::io_context& Context();

private:
    struct State;
    std::unique_ptr<State> m_pState;
};

} // namespace Bench
