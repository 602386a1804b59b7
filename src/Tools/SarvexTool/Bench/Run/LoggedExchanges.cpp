#include "Tools/SarvexTool/Bench/Run/LoggedExchanges.h"

#include "Tools/SarvexTool/Bench/Files/BadFile.h"
#include "Tools/SarvexTool/Bench/Files/UtcTime.h"

#include <string_view>
#include <utility>

namespace Bench {

namespace {

std::string BodyOf(const std::string& request) {
    constexpr std::string_view headEnd = "\r\n\r\n";
    const std::size_t end = request.find(headEnd);
    return end == std::string::npos ? request : request.substr(end + headEnd.size());
}

ExchangeResult ResultOf(ExchangeEnd::Kind kind) {
    switch (kind) {
    case ExchangeEnd::Kind::Answered:
        return ExchangeResult::Answered;
    case ExchangeEnd::Kind::TimedOut:
        return ExchangeResult::TimedOut;
    case ExchangeEnd::Kind::Lost:
        return ExchangeResult::ConnectionLost;
    case ExchangeEnd::Kind::Unreachable:
        break;
    }
    return ExchangeResult::Unreachable;
}

} // namespace

LoggedExchanges::LoggedExchanges(EventLoop& loop, const DaemonPeer& daemon,
                                 const std::string& logName, std::chrono::milliseconds timeout,
                                 Callback ended)
    : m_loop(loop),
      m_daemon(daemon),
      m_log(logName),
      m_timeout(timeout),
      m_ended(std::move(ended)) {}

void LoggedExchanges::Begin(LineNumber line, Sender sender, const std::string& request) {
    m_logged = {};
    m_logged.line = line;
    m_logged.by = sender;
    m_logged.command = BodyOf(request);
    m_logged.time = UtcTime(std::chrono::system_clock::now());
    m_start = std::chrono::steady_clock::now();
    m_exchange.emplace(m_loop, m_daemon, request, m_timeout, [this](const ExchangeEnd& end) {
        m_ended(end, Log(ResultOf(end.kind), end.bytes));
    });
}

std::string LoggedExchanges::Abandon() {
    std::optional<std::string> bytes = m_exchange ? m_exchange->Abandon() : std::nullopt;
    m_exchange.reset();
    return bytes ? Log(ExchangeResult::TimedOut, std::move(*bytes)) : "";
}

/// Returns why it failed; empty when it has not.
std::string LoggedExchanges::Log(ExchangeResult result, std::string answer) {
    const std::chrono::duration<double> taken = std::chrono::steady_clock::now() - m_start;
    m_logged.seconds = taken.count();
    m_logged.result = result;
    m_logged.answer = std::move(answer);
    try {
        m_log.Append(std::move(m_logged));
    } catch (const std::exception& error) {
        return error.what();
    }
    return "";
}

} // namespace Bench
