#pragma once

// Public, stable within a major version. For any thread. Nothing throws. CreateHandle and
// ReleaseHandle are the class's own steps: programs make objects of the class.

#include "Modules/xFramework/SyncObjectsOSAL/ICriticalSection.h"

namespace OSAL {
struct CriticalSection;
}

namespace SyncObjectsOSAL {

/// What the creation and release steps report.
namespace CriticalSectionStatus {
inline constexpr int Success = 0;
inline constexpr int NoMemory = 1;
inline constexpr int NoHandle = 4;
} // namespace CriticalSectionStatus

/// Creates the operating system's lock into handle; NoMemory leaves handle null.
int CreateHandle(OSAL::CriticalSection*& handle) noexcept;

/// Releases the lock and sets handle to null; NoHandle when it is null already.
int ReleaseHandle(OSAL::CriticalSection*& handle) noexcept;

/// A recursive lock of the operating system. It must outlive every thread that uses it.
///
/// Neither construction nor destruction throws by itself: a failure is told to the debug printer,
/// when that is switched on (its sinks are a host's and do not throw), and leaves an object that
/// exists but must not be entered.
class CriticalSectionOSAL : public ICriticalSection {
public:
    CriticalSectionOSAL();
    ~CriticalSectionOSAL() override;

    CriticalSectionOSAL(const CriticalSectionOSAL&) = delete;
    CriticalSectionOSAL& operator=(const CriticalSectionOSAL&) = delete;

    int Enter() override;
    int Leave() override;

private:
    OSAL::CriticalSection* m_pHandle = nullptr;
};

} // namespace SyncObjectsOSAL
