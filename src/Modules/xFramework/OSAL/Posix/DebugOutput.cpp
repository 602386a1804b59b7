#include "Modules/xFramework/OSAL/DebugOutput.h"

#include <syslog.h>

namespace OSAL {

void OutputDebugStringA(const char* message) noexcept {
    ::syslog(LOG_USER | LOG_DEBUG, "%s", message);
}

} // namespace OSAL
