#pragma once

#include "Tools/SarvexTool/Bench/Files/ExchangeLog.h"
#include "Tools/SarvexTool/Bench/Run/DaemonExchange.h"

#include <chrono>
#include <functional>
#include <optional>
#include <string>

namespace Bench {

/// The exchanges of a run with its daemon, one at a time, each of which the run's log gets.
class LoggedExchanges {
public:
    /// Hears how an exchange has ended, and why it could not be logged; empty when it was.
    using Callback = std::function<void(const ExchangeEnd& end, const std::string& failure)>;

    /// The loop and the daemon live longer. The time-out is that of DaemonExchange. Throws as
    /// ExchangeLog.
    LoggedExchanges(EventLoop& loop, const DaemonPeer& daemon, const std::string& logName,
                    std::chrono::milliseconds timeout, Callback ended);

    /// Sends a request for a line of the test file, and calls back once.
    void Begin(LineNumber line, Sender sender, const std::string& request);

    /// Ends the exchange that is under way, if there is one, as one that was not answered in time;
    /// nothing is called back. Returns why it could not be logged; empty when it was.
    std::string Abandon();

private:
    std::string Log(ExchangeResult result, std::string answer);

    EventLoop& m_loop;
    const DaemonPeer& m_daemon;
    ExchangeLog m_log;
    std::chrono::milliseconds m_timeout;
    Callback m_ended;
    std::optional<DaemonExchange> m_exchange;
    LoggedExchange m_logged;
    std::chrono::steady_clock::time_point m_start;
};

} // namespace Bench
