#pragma once

#include "Tools/SarvexTool/Bench/Run/EventLoop.h"

#include <chrono>
#include <functional>
#include <memory>

namespace Bench {

/// Timers that each expire once, named by numbers.
class Timers {
public:
    using Callback = std::function<void(int timer)>;

    /// The callback gets the timer that has expired.
    Timers(EventLoop& loop, Callback expired);
    /// No timer expires any more.
    ~Timers();
    Timers(const Timers&) = delete;
    Timers& operator=(const Timers&) = delete;

    /// Starts a timer, from the beginning if it runs.
    void Set(int timer, std::chrono::milliseconds time);

    /// The timer does not expire, even if its time is over already.
    void Cancel(int timer);

private:
    struct State;
    std::shared_ptr<State> m_pState;
};

} // namespace Bench
