#pragma once

#include "Tools/SarvexTool/Bench/Daemon/DaemonAddress.h"
#include "Tools/SarvexTool/Bench/Run/EventLoop.h"
#include "Tools/SarvexTool/Bench/Supervision/Supervisor.h"

#include <chrono>
#include <functional>
#include <memory>
#include <optional>
#include <string>

namespace Bench {

class Endpoints;

/// A daemon's address, which is looked up once for all exchanges.
class DaemonPeer {
public:
    /// Looks nothing up yet.
    DaemonPeer(EventLoop& loop, const DaemonAddress& address);

    const std::shared_ptr<Endpoints>& Found() const { return m_pEndpoints; }

private:
    std::shared_ptr<Endpoints> m_pEndpoints;
};

/// One exchange with the daemon, over a connection of its own. The answer is read as the client
/// reads it.
class DaemonExchange {
public:
    using Callback = std::function<void(ExchangeEnd)>;

    /// Sends the bytes and calls back once. The time-out counts from the last byte that came, and
    /// from now before the first.
    DaemonExchange(EventLoop& loop, const DaemonPeer& daemon, std::string request,
                   std::chrono::milliseconds timeout, Callback ended);
    ~DaemonExchange();
    DaemonExchange(const DaemonExchange&) = delete;
    DaemonExchange& operator=(const DaemonExchange&) = delete;

    /// Closes the connection; nothing is called back any more. Returns what has come so far;
    /// nothing when the exchange has ended.
    std::optional<std::string> Abandon();

private:
    class State;
    std::shared_ptr<State> m_pState;
};

} // namespace Bench
