#include "Modules/xFramework/SyncObjectsOSAL/CriticalSectionOSAL.h"

#include "Modules/xFramework/DebugPrint/CDebugPrint.h"
#include "Modules/xFramework/OSAL/CriticalSection.h"

namespace SyncObjectsOSAL {

namespace {

/// The log is above this layer and uses its locks, so the debug printer gets this.
void ReportFailure(int status, const char* function, const char* message) {
    constexpr std::int32_t errorLevel = 5;
    if (status == CriticalSectionStatus::Success)
        return;
    CDebugPrint& printer = CDebugPrint::Instance();
    if (printer.IsEnabled())
        printer.Print(function, errorLevel, "%s", message);
}

} // namespace

int CreateHandle(OSAL::CriticalSection*& handle) noexcept {
    handle = OSAL::CreateCriticalSection();
    return handle != nullptr ? CriticalSectionStatus::Success : CriticalSectionStatus::NoMemory;
}

int ReleaseHandle(OSAL::CriticalSection*& handle) noexcept {
    if (handle == nullptr)
        return CriticalSectionStatus::NoHandle;
    OSAL::DestroyCriticalSection(handle);
    handle = nullptr;
    return CriticalSectionStatus::Success;
}

CriticalSectionOSAL::CriticalSectionOSAL() {
    ReportFailure(CreateHandle(m_pHandle),
                  "SyncObjectsOSAL::CriticalSectionOSAL::CriticalSectionOSAL",
                  "Failed initializing CriticalSectionOSAL");
}

CriticalSectionOSAL::~CriticalSectionOSAL() {
    if (m_pHandle == nullptr)
        return;
    ReportFailure(ReleaseHandle(m_pHandle),
                  "SyncObjectsOSAL::CriticalSectionOSAL::~CriticalSectionOSAL",
                  "Failed deleting Critical Section");
}

int CriticalSectionOSAL::Enter() {
    OSAL::EnterCriticalSection(m_pHandle);
    return 0;
}

int CriticalSectionOSAL::Leave() {
    OSAL::LeaveCriticalSection(m_pHandle);
    return 0;
}

} // namespace SyncObjectsOSAL
