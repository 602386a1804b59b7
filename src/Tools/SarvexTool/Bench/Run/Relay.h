#pragma once

#include "Tools/SarvexTool/Bench/Run/EventLoop.h"

#include <cstdint>
#include <functional>
#include <memory>
#include <string>

namespace Bench {

/// The client's daemon on this machine: listens on a port of four digits of 127.0.0.1 and hands the
/// client's requests over, one at a time. A connection that does not begin as a request of the
/// client's does is closed and does not count. One that stalls keeps no other from being served:
/// of those whose request is not whole there may be a few at a time, and the oldest goes first.
class Relay {
public:
    /// Gets the bytes of a whole request. There is no other one before Reply.
    using Callback = std::function<void(std::string request)>;

    /// Throws std::runtime_error when no port is free.
    Relay(EventLoop& loop, Callback requested);
    /// Closes what is open; nothing is called back any more.
    ~Relay();
    Relay(const Relay&) = delete;
    Relay& operator=(const Relay&) = delete;

    /// From 1024 to 9999: the client's port file holds four digits.
    std::uint16_t Port() const;

    /// Answers the request that was handed over: sends all the bytes, ends sending and closes.
    /// Without bytes only closes. What a client does not take is lost. Does nothing when no request
    /// waits for its answer.
    void Reply(std::string bytes);

private:
    class State;
    std::shared_ptr<State> m_pState;
};

} // namespace Bench
