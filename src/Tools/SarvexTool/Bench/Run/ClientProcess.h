#pragma once

#include "Modules/xFramework/OSAL/ChildProcess.h"
#include "Tools/SarvexTool/Bench/Run/EventLoop.h"

#include <functional>
#include <memory>
#include <thread>

namespace Bench {

/// The client, which another thread waits for.
class ClientProcess {
public:
    using Callback = std::function<void(OSAL::ChildEnd)>;

    /// Starts it; the callback gets its end. To be made on the main thread. Throws
    /// std::system_error when it cannot be started.
    ClientProcess(EventLoop& loop, const OSAL::ChildStart& start, Callback ended);
    /// Kills it if it still runs, and waits for its end; nothing is called back any more.
    ~ClientProcess();
    ClientProcess(const ClientProcess&) = delete;
    ClientProcess& operator=(const ClientProcess&) = delete;

    /// Ends it at once; the callback follows. Does nothing when it has ended.
    void Kill() { m_child.Kill(); }

private:
    OSAL::ChildProcess m_child;
    std::shared_ptr<Callback> m_pEnded;
    std::thread m_waiter;
};

} // namespace Bench
