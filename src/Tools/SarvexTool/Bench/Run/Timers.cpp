#include "Tools/SarvexTool/Bench/Run/Timers.h"

// Asio 1.18 forgets to include it.
#include <utility>

#include <boost/asio/io_context.hpp>
#include <boost/asio/steady_timer.hpp>

#include <map>

namespace Bench {

struct Timers::State {
    boost::asio::io_context& context;
    Callback expired;
    /// Those that run. One that was set anew or cancelled is another object, or none: an expiry of
    /// the former one may be under way already.
    std::map<int, std::shared_ptr<boost::asio::steady_timer>> running;
};

Timers::Timers(EventLoop& loop, Callback expired)
    : m_pState(std::make_shared<State>(State{loop.Context(), std::move(expired), {}})) {}

Timers::~Timers() {
    m_pState->running.clear();
}

void Timers::Set(int timer, std::chrono::milliseconds time) {
    auto& pRunning = m_pState->running[timer];
    pRunning = std::make_shared<boost::asio::steady_timer>(m_pState->context, time);
    // Whoever waits must not keep the timer alive, for its end cancels it.
    pRunning->async_wait([weakState = std::weak_ptr(m_pState), weakTimer = std::weak_ptr(pRunning),
                          timer](const boost::system::error_code& error) {
        const auto pState = weakState.lock();
        const auto pExpired = weakTimer.lock();
        if (error || !pState || !pExpired)
            return;
        pState->running.erase(timer);
        pState->expired(timer);
    });
}

void Timers::Cancel(int timer) {
    m_pState->running.erase(timer);
}

} // namespace Bench
