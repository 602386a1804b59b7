#include "Tools/SarvexTool/Bench/Supervision/IdleWatch.h"

#include <utility>

namespace Bench {

void IdleWatch::Connected() {
    m_state = State::Connected;
    m_isDoubtful = true;
}

void IdleWatch::Failed() {
    m_state = State::None;
    m_losses = 0;
}

bool IdleWatch::Lost() {
    constexpr unsigned lossesOfAnIdleCloser = 3;
    m_state = State::None;
    m_isDoubtful = true;
    m_hasLasted = false;
    // A daemon that is away behind a port forward loses each connection at once.
    const bool wasThere = std::exchange(m_isAnswered, false);
    if (wasThere)
        ++m_losses;
    m_closesIdle = m_closesIdle || m_losses == lossesOfAnIdleCloser;
    return wasThere && !m_closesIdle;
}

void IdleWatch::DaemonGone() {
    m_losses = 0;
    m_isAnswered = false;
}

void IdleWatch::EndLine() {
    if (m_hasLasted)
        m_losses = 0;
}

void IdleWatch::Settle() {
    m_isDoubtful = false;
    m_hasLasted = m_state == State::Connected;
}

bool IdleWatch::IsDoubtful() const {
    return m_isDoubtful || IsNeeded();
}

} // namespace Bench
