#include "Modules/xFramework/OSAL/CriticalSection.h"

#include <windows.h>

#include <new>

namespace OSAL {

struct CriticalSection {
    CRITICAL_SECTION section;
};

CriticalSection* CreateCriticalSection() noexcept {
    auto* section = new (std::nothrow) CriticalSection;
    if (section != nullptr)
        ::InitializeCriticalSection(&section->section);
    return section;
}

void DestroyCriticalSection(CriticalSection* section) noexcept {
    ::DeleteCriticalSection(&section->section);
    delete section;
}

void EnterCriticalSection(CriticalSection* section) noexcept {
    ::EnterCriticalSection(&section->section);
}

void LeaveCriticalSection(CriticalSection* section) noexcept {
    ::LeaveCriticalSection(&section->section);
}

} // namespace OSAL
