#pragma once

namespace Bench {

/// What the connection over which nothing is sent tells of the device's settings: while it lasts,
/// the daemon has not started anew and has them still.
class IdleWatch {
public:
    /// A connection is being made.
    void Connecting() { m_state = State::Connecting; }
    /// From here on a restart shows; whether there was one before is not known.
    void Connected();
    /// There was no connection: the daemon is away, and does not just close what is not used.
    void Failed();
    /// Returns whether it is worth another connection now, before the next start. After several
    /// lost ones, none of which lasted from a start to its stop, with a daemon that answered before
    /// each and was there whenever it was asked, the daemon is taken for one that closes those
    /// which are not used.
    bool Lost();
    void Dropped() { m_state = State::None; }
    /// An exchange was answered: the daemon is there.
    void Answered() { m_isAnswered = true; }
    /// An exchange found the daemon gone, or lost its connection.
    void DaemonGone();

    /// Whether restarts would show with a connection that there is not yet.
    bool IsNeeded() const { return m_state != State::Connected && !m_closesIdle; }
    /// Whether it is still to be made.
    bool IsMissing() const { return m_state == State::None && !m_closesIdle; }

    /// A client starts on its lines. Where restarts cannot show, this is when settings are sent.
    void BeginSegment() { m_isDoubtful = m_isDoubtful || m_closesIdle; }
    /// A start was stopped.
    void EndLine();
    /// Something else has happened after which the device may have other settings.
    void Doubt() { m_isDoubtful = true; }
    /// The device has been given its settings, and a start goes out.
    void Settle();
    /// Whether the device may have lost its settings; also after Settle, when the connection has
    /// ended since.
    bool IsDoubtful() const;

    /// Whether the daemon closes connections that are not used.
    bool ClosesIdle() const { return m_closesIdle; }

private:
    enum class State { None, Connecting, Connected };

    State m_state = State::None;
    bool m_isDoubtful = false;
    bool m_closesIdle = false;
    /// Since the start went out.
    bool m_hasLasted = false;
    /// Whether an exchange was answered since the last one was lost, or a connection.
    bool m_isAnswered = false;
    unsigned m_losses = 0;
};

} // namespace Bench
