#pragma once

#include "Modules/xFramework/OSAL/Handle.h"

#include <cstdint>
#include <string>
#include <string_view>
#include <utility>

namespace OSAL {

/// A file that is appended to. What was appended and synced outlasts the death of the program and
/// of the system. Children do not inherit it; others can read it meanwhile. What fails throws a
/// std::system_error by value, whose text says what was being done on which file. To be used by one
/// thread at a time.
class DurableFile {
public:
    enum class Opening : std::uint8_t {
        /// Fails where there is a file already.
        New,
        /// Fails where there is none.
        Existing,
        /// Opens the file, or creates an empty one.
        Either
    };

    /// The path is in UTF-8. A file that is created becomes durable by name with SyncDirectory.
    DurableFile(std::string path, Opening opening);
    ~DurableFile();
    DurableFile(DurableFile&& other) noexcept
        : m_path(std::move(other.m_path)), m_handle(std::exchange(other.m_handle, InvalidHandle)) {}
    DurableFile& operator=(DurableFile&& other) noexcept {
        std::swap(m_path, other.m_path);
        std::swap(m_handle, other.m_handle);
        return *this;
    }

    const std::string& Path() const { return m_path; }

    /// Adds all bytes at the end of the file, or none: when it fails, what was added of them is
    /// taken back, as far as the system lets it.
    void Append(std::string_view bytes);

    /// Waits until the disk has what was appended.
    void Sync();

    /// Cuts the file to that many bytes, which is not more than it has.
    void Truncate(std::uint64_t size);

    /// In bytes.
    std::uint64_t Size() const;

private:
    [[noreturn]] void Fail(const char* what) const;

    std::string m_path;
    Handle m_handle = InvalidHandle;
};

/// Waits until the disk has the names of the files that a folder holds, where a system needs that.
/// The path is in UTF-8. Throws std::system_error.
void SyncDirectory(const std::string& path);

} // namespace OSAL
