#pragma once

#include "Modules/xFramework/OSAL/Interruption.h"

#include <condition_variable>
#include <mutex>

namespace OSAL {

/// Counts what a listener is told.
class CountedInterruptions {
public:
    InterruptionListener::Function Function() {
        return [this](InterruptionKind kind) {
            const std::lock_guard lock(m_mutex);
            (kind == InterruptionKind::Interrupt ? m_count : m_closings) += 1;
            m_changed.notify_all();
        };
    }

    void WaitFor(int count) {
        std::unique_lock lock(m_mutex);
        m_changed.wait(lock, [&] { return m_count >= count; });
    }

    int Count() {
        const std::lock_guard lock(m_mutex);
        return m_count;
    }

    int Closings() {
        const std::lock_guard lock(m_mutex);
        return m_closings;
    }

private:
    std::mutex m_mutex;
    std::condition_variable m_changed;
    int m_count = 0;
    int m_closings = 0;
};

} // namespace OSAL
