#pragma once

#include "Modules/xFramework/OSAL/Interruption.h"

#include <chrono>
#include <functional>
#include <mutex>
#include <optional>

namespace Bench {

/// The requests to end the program, such as a Ctrl-C, from the beginning of a run until its last
/// words are out. One request may come as several signals: a program that ends another one may tell
/// both it and its group. Of those half a second apart at most only the first one counts.
class EndRequests {
public:
    using Function = std::function<void(OSAL::InterruptionKind)>;

    /// From now on no request ends the program: the first one waits for Begin. The function hears
    /// of a second one, or that the console closes, on another thread, and may not throw. Throws as
    /// InterruptionListener.
    void Hold(Function urgent);

    /// A request ends the program again, unless there was one already.
    void Release();

    /// Something begins that a request ends safely, a run for instance. From now on no request ends
    /// the program; the function hears of each, on another thread, and of one that waits, on this
    /// one; it may not throw. Throws as InterruptionListener.
    void Begin(Function function);

    /// That is over; the function is not called any more.
    void End();

    /// Whether there was one.
    bool IsWanted() const;

    /// Whether nobody is to be waited for: there was a second request, or one after End,
    /// or the console closes.
    bool AreUrgent() const;

private:
    using Clock = std::chrono::steady_clock;

    void Listen();
    void Hear(OSAL::InterruptionKind kind);

    mutable std::mutex m_mutex;
    Function m_function;
    /// Whether requests wait for Begin.
    bool m_isHeld = false;
    /// When the last one came.
    std::optional<Clock::time_point> m_last;
    OSAL::InterruptionKind m_lastKind{};
    bool m_areUrgent = false;
    /// The last member: it uses the others on its thread.
    std::optional<OSAL::InterruptionListener> m_listener;
};

} // namespace Bench
