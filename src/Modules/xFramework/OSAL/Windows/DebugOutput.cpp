#include "Modules/xFramework/OSAL/DebugOutput.h"

#include <windows.h>

namespace OSAL {

void OutputDebugStringA(const char* message) noexcept {
    ::OutputDebugStringA(message);
}

} // namespace OSAL
