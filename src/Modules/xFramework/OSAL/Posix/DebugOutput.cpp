#include "Modules/xFramework/OSAL/DebugOutput.h"

#include <syslog.h>
#include <unistd.h>

namespace OSAL {

void OutputDebugStringA(const char* message) noexcept {
    // Where no system log listens (in a container, say), each record would cost a failed
    // connection, and a test run traces many.
    if (::access("/dev/log", F_OK) == 0)
        ::syslog(LOG_USER | LOG_DEBUG, "%s", message);
}

} // namespace OSAL
