#include "Tools/SarvexTool/Bench/Supervision/IdleWatch.h"

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
    m_closesIdle = m_closesIdle || ++m_losses == lossesOfAnIdleCloser;
    return !m_closesIdle;
}

void IdleWatch::EndLine() {
    if (m_hasLasted)
        m_losses = 0;
}

bool IdleWatch::IsDoubtful() const {
    return m_isDoubtful || IsNeeded();
}

} // namespace Bench
