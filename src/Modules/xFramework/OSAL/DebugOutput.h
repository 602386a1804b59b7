#pragma once

namespace OSAL {

/// Sends one zero-terminated message to the debugger output: the debugger on Windows, the system
/// log at debug priority elsewhere.
void OutputDebugStringA(const char* message) noexcept;

} // namespace OSAL
