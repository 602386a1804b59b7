#pragma once

#include "Modules/xFramework/OSAL/Handle.h"

#include <optional>
#include <string>
#include <string_view>
#include <utility>

namespace OSAL {

/// A file that one process of this host has to itself. It is given back when the object goes or the
/// process ends in whatever way. The file stays, and its text can be read by everyone. Children do
/// not inherit the lock.
class FileLock {
public:
    /// Takes the lock of a file, which is created where there is none; nothing when somebody has
    /// it. The holder's text replaces what the file holds. The path is in UTF-8; a symbolic link is
    /// no file to lock. Throws std::system_error when the file cannot be opened or written.
    static std::optional<FileLock> TryLock(const std::string& path, std::string_view holder);

    ~FileLock();
    FileLock(FileLock&& other) noexcept : m_handle(std::exchange(other.m_handle, InvalidHandle)) {}
    FileLock& operator=(FileLock&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }

private:
    explicit FileLock(Handle handle) : m_handle(handle) {}

    Handle m_handle;
};

/// The folder of that name which is this user's own, whatever the environment says of temporary
/// folders, and which is made where there is none; in UTF-8. Throws std::system_error when it
/// cannot be made, and when the one that is there belongs to somebody else or is open to others.
std::string MakeUserFolder(const std::string& name);

} // namespace OSAL
