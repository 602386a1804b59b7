#include "Tools/SarvexTool/Bench/Run/EndRequests.h"

#include <utility>

namespace Bench {

void EndRequests::Hold(Function urgent) {
    {
        const std::lock_guard lock(m_mutex);
        m_function = std::move(urgent);
        m_isHeld = true;
    }
    Listen();
}

void EndRequests::Release() {
    if (IsWanted())
        return;
    m_listener.reset();
    End();
}

void EndRequests::Begin(Function function) {
    {
        const std::lock_guard lock(m_mutex);
        m_function = std::move(function);
        m_isHeld = false;
        if (m_last)
            m_function(m_lastKind);
    }
    Listen();
}

void EndRequests::End() {
    const std::lock_guard lock(m_mutex);
    m_function = nullptr;
    m_isHeld = false;
}

bool EndRequests::IsWanted() const {
    const std::lock_guard lock(m_mutex);
    return m_last.has_value();
}

bool EndRequests::AreUrgent() const {
    const std::lock_guard lock(m_mutex);
    return m_areUrgent;
}

void EndRequests::Listen() {
    if (!m_listener)
        m_listener.emplace([this](OSAL::InterruptionKind kind) { Hear(kind); });
}

void EndRequests::Hear(OSAL::InterruptionKind kind) {
    constexpr std::chrono::milliseconds longestEcho(500);
    const std::lock_guard lock(m_mutex);
    const bool isClosing = kind == OSAL::InterruptionKind::ConsoleClosing;
    const Clock::time_point now = Clock::now();
    if (!isClosing && m_last && now - *m_last < longestEcho)
        return;
    m_areUrgent = m_areUrgent || isClosing || m_last.has_value() || !m_function;
    m_last = now;
    m_lastKind = kind;
    if (m_function && (m_areUrgent || !m_isHeld))
        m_function(kind);
}

} // namespace Bench
