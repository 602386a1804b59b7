#include "Tools/SarvexTool/Bench/Run/DaemonExchange.h"

#include "Tools/SarvexTool/Bench/Daemon/Exchange.h"
#include "Tools/SarvexTool/Bench/Supervision/Answer.h"

#include <boost/asio/steady_timer.hpp>

#include <optional>
#include <string_view>
#include <utility>

namespace Bench {

namespace {

using Clock = std::chrono::steady_clock;

} // namespace

class DaemonExchange::State : public std::enable_shared_from_this<State> {
public:
    State(EventLoop& loop, std::chrono::milliseconds timeout, Callback ended)
        : m_timer(loop.Context()), m_timeout(timeout), m_ended(std::move(ended)) {}

    void Start(EventLoop& loop, const DaemonPeer& daemon, std::string request) {
        const auto weak = weak_from_this();
        m_pExchange = std::make_shared<Exchange>(
            loop.Context(), daemon.Found(), std::move(request),
            Exchange::Events{[weak](std::string_view bytes, std::string_view text) {
                                 if (const auto self = weak.lock())
                                     self->Take(bytes, text);
                             },
                             [weak](const std::string& failure) {
                                 if (const auto self = weak.lock())
                                     self->TakeEnd(failure);
                             }});
        m_lastByte = Clock::now();
        WaitForTimeout();
        m_pExchange->Start();
    }

    std::optional<std::string> Abandon() {
        const bool isUnderWay = m_ended != nullptr;
        boost::system::error_code ignored;
        m_timer.cancel(ignored);
        m_ended = nullptr;
        m_pExchange->Abandon();
        return isUnderWay ? std::optional(std::move(m_bytes)) : std::nullopt;
    }

private:
    /// One wait after the other: to begin anew with each byte would cost more than the bytes.
    void WaitForTimeout() {
        m_timer.expires_at(m_lastByte + m_timeout);
        m_timer.async_wait([weak = weak_from_this()](const boost::system::error_code& error) {
            const auto self = weak.lock();
            if (error || !self || !self->m_ended)
                return;
            if (Clock::now() < self->m_lastByte + self->m_timeout)
                self->WaitForTimeout();
            else
                self->TimeOut();
        });
    }

    void Take(std::string_view bytes, std::string_view text) {
        m_lastByte = Clock::now();
        if (text.size() != bytes.size() && !m_text)
            m_text = m_bytes;
        m_bytes += bytes;
        if (m_text)
            *m_text += text;
    }

    bool IsAnswered() const {
        return m_pExchange->Step() == ExchangeStep::Complete ||
               HasReturnCode(m_text ? *m_text : m_bytes);
    }

    void TakeEnd(const std::string& failure) {
        if (IsAnswered())
            return End(ExchangeEnd::Kind::Answered, "");
        if (m_pExchange->Step() == ExchangeStep::Connecting)
            return End(ExchangeEnd::Kind::Unreachable, failure);
        if (m_pExchange->Step() == ExchangeStep::Sending)
            return End(ExchangeEnd::Kind::Lost, failure);
        const std::string reason = failure.empty() ? "" : " (" + failure + ")";
        End(ExchangeEnd::Kind::Lost,
            (m_bytes.empty() ? "closes the connection without an answer"
                             : "closes the connection before the end of its answer") +
                reason);
    }

    void TimeOut() {
        const double seconds = std::chrono::duration<double>(m_timeout).count();
        const std::string within = "within " + SecondsText(seconds) + " s";
        if (IsAnswered())
            End(ExchangeEnd::Kind::Answered, "");
        else if (m_pExchange->Step() == ExchangeStep::Connecting)
            End(ExchangeEnd::Kind::Unreachable, "cannot be reached " + within);
        else
            End(ExchangeEnd::Kind::TimedOut, "gives no whole answer " + within);
    }

    void End(ExchangeEnd::Kind kind, const std::string& words) {
        const Callback ended = std::exchange(m_ended, nullptr);
        Abandon();
        ended({kind, std::move(m_bytes), words});
    }

    boost::asio::steady_timer m_timer;
    std::chrono::milliseconds m_timeout;
    Callback m_ended;
    std::shared_ptr<Exchange> m_pExchange;
    Clock::time_point m_lastByte;
    std::string m_bytes;
    /// What the client takes of the bytes; only where that is not all.
    std::optional<std::string> m_text;
};

DaemonPeer::DaemonPeer(EventLoop& loop, const DaemonAddress& address)
    : m_pEndpoints(std::make_shared<Endpoints>(loop.Context(), address)) {}

DaemonExchange::DaemonExchange(EventLoop& loop, const DaemonPeer& daemon, std::string request,
                               std::chrono::milliseconds timeout, Callback ended)
    : m_pState(std::make_shared<State>(loop, timeout, std::move(ended))) {
    m_pState->Start(loop, daemon, std::move(request));
}

DaemonExchange::~DaemonExchange() {
    Abandon();
}

std::optional<std::string> DaemonExchange::Abandon() {
    return m_pState->Abandon();
}

} // namespace Bench
