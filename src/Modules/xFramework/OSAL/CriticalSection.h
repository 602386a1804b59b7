#pragma once

namespace OSAL {

/// A recursive mutual-exclusion lock of the operating system.
struct CriticalSection;

/// Allocates and initialises a lock; null when there is no memory for it. Never throws.
CriticalSection* CreateCriticalSection() noexcept;

/// Releases and frees a lock that CreateCriticalSection returned and that nobody holds.
void DestroyCriticalSection(CriticalSection* section) noexcept;

/// Blocks until the calling thread holds the lock; the holder may enter again.
void EnterCriticalSection(CriticalSection* section) noexcept;

/// Gives one entry of the calling thread back.
void LeaveCriticalSection(CriticalSection* section) noexcept;

} // namespace OSAL
