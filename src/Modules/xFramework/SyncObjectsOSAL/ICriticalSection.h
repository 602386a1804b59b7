#pragma once

// Public, stable within a major version. For any thread.

namespace SyncObjectsOSAL {

/// Common base of the synchronisation objects.
class ISyncInterface {
public:
    virtual ~ISyncInterface() = default;
};

/// A mutual-exclusion lock that its holder may enter again.
class ICriticalSection : public virtual ISyncInterface {
public:
    /// Blocks until the calling thread holds the lock; returns 0.
    virtual int Enter() = 0;
    /// Gives one entry back; returns 0.
    virtual int Leave() = 0;
};

} // namespace SyncObjectsOSAL
