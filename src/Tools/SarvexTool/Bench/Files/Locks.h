#pragma once

#include "Modules/xFramework/OSAL/FileLock.h"
#include "Tools/SarvexTool/Bench/Files/BadFile.h"

#include <cstdint>
#include <string>

namespace Bench {

/// What somebody else is using; the problem says who.
class InUse : public BadFile {
public:
    using BadFile::BadFile;
};

/// Who has something to himself, for the one who is refused.
struct LockHolder {
    std::uint64_t processId = 0;
    /// The folder of his run; empty for somebody without one.
    std::string directory;
    /// As UtcTime writes it.
    std::string since;
};

/// Has the lock of the file as long as the result lives. When somebody else has it, throws InUse,
/// which names what is locked and not the file, for that is of no use to anybody; std::system_error
/// when it cannot be told.
OSAL::FileLock TakeLock(const std::string& file, const std::string& name, const std::string& what,
                        const LockHolder& holder);

/// The same for a daemon, among all runs of this user on this host. The host is what the name of
/// the daemon's host was resolved to.
OSAL::FileLock LockDaemon(const std::string& host, std::uint16_t port, const LockHolder& holder);

/// The folder of that name for this user's locks, which is made where there is none. Throws
/// std::runtime_error, which says what to do about one that is not this user's alone.
std::string LockFolder(const std::string& name);

/// The file that LockDaemon locks.
std::string DaemonLockFile(const std::string& host, std::uint16_t port);

} // namespace Bench
