#pragma once

#include "Tools/SarvexTool/Bench/Run/DaemonExchange.h"

#include <chrono>
#include <functional>
#include <memory>
#include <string>

namespace Bench {

/// A connection to the daemon that is never used: while it lasts, the daemon has not started anew.
class IdleConnection {
public:
    struct Events {
        std::function<void()> connected;
        /// There is no connection; with words as in "the daemon ...".
        std::function<void(const std::string& words)> failed;
        /// The connection that there was has ended.
        std::function<void()> lost;
    };

    /// Begins to connect, for at most the given time. Calls back either failed, or connected and
    /// then perhaps lost.
    IdleConnection(EventLoop& loop, const DaemonPeer& daemon, std::chrono::milliseconds timeout,
                   Events events);
    /// Closes the connection; nothing is called back any more.
    ~IdleConnection();
    IdleConnection(const IdleConnection&) = delete;
    IdleConnection& operator=(const IdleConnection&) = delete;

private:
    class State;
    std::shared_ptr<State> m_pState;
};

} // namespace Bench
