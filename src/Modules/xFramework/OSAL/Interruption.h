#pragma once

#include <cstdint>
#include <functional>
#include <memory>

namespace OSAL {

/// While one lives, Ctrl-C, a closed terminal or the system's request to end does not end the
/// program at once, so that it can take back what is not finished. The program ends when the last
/// one goes, as it would have ended without any; a second request ends it at once. Where there is
/// an InterruptionListener, requests are for that one and nothing is held. To be made and destroyed
/// by one thread.
class HeldInterruption {
public:
    HeldInterruption();
    ~HeldInterruption();
    HeldInterruption(const HeldInterruption&) = delete;
    HeldInterruption& operator=(const HeldInterruption&) = delete;

    /// Whether the program is to end.
    static bool IsWanted();
};

/// What asks the program to end.
enum class InterruptionKind : std::uint8_t {
    /// Ctrl-C, Ctrl-Break, SIGINT, SIGTERM, or a terminal that hangs up.
    Interrupt,
    /// The console closes, or the user's session or the system ends: the system ends the program
    /// some seconds later (Windows only).
    ConsoleClosing
};

/// While it lives, no request to end ends the program; a given function hears of each, the second
/// one too. Only the first hang-up of a terminal counts, because both the system and the shell tell
/// it. A signal that is ignored when it is made stays ignored, as nohup wants it. At most one may
/// live, made while no HeldInterruption lives.
class InterruptionListener {
public:
    using Function = std::function<void(InterruptionKind)>;

    /// The function is called on a thread that is not the caller's, for one request after the
    /// other; it may not throw. Throws std::system_error when the system has no thread or pipe for
    /// it.
    explicit InterruptionListener(Function function);
    /// The function is not called any more; waits for the call that there may be. After
    /// ConsoleClosing the program is to end soon.
    ~InterruptionListener();
    InterruptionListener(const InterruptionListener&) = delete;
    InterruptionListener& operator=(const InterruptionListener&) = delete;

private:
    struct System;
    std::unique_ptr<System> m_pSystem;
};

} // namespace OSAL
