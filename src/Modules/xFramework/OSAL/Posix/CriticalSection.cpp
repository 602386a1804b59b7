#include "Modules/xFramework/OSAL/CriticalSection.h"

#include <pthread.h>

#include <new>

namespace OSAL {

struct CriticalSection {
    pthread_mutex_t mutex;
};

CriticalSection* CreateCriticalSection() noexcept {
    auto* section = new (std::nothrow) CriticalSection;
    if (section == nullptr)
        return nullptr;
    pthread_mutexattr_t attributes;
    pthread_mutexattr_init(&attributes);
    pthread_mutexattr_settype(&attributes, PTHREAD_MUTEX_RECURSIVE);
    pthread_mutex_init(&section->mutex, &attributes);
    pthread_mutexattr_destroy(&attributes);
    return section;
}

void DestroyCriticalSection(CriticalSection* section) noexcept {
    pthread_mutex_destroy(&section->mutex);
    delete section;
}

void EnterCriticalSection(CriticalSection* section) noexcept {
    pthread_mutex_lock(&section->mutex);
}

void LeaveCriticalSection(CriticalSection* section) noexcept {
    pthread_mutex_unlock(&section->mutex);
}

} // namespace OSAL
