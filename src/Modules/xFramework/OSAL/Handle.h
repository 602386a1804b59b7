#pragma once

#include <cstdint>
#include <utility>

namespace OSAL {

/// A file, process or thread of the operating system.
using Handle = std::uint64_t;

inline constexpr Handle InvalidHandle = ~Handle{0};

/// Gives a handle back; false when it names nothing open. InvalidHandle does no harm; Windows takes
/// it for the running process and returns true.
bool CloseHandle(Handle handle);

/// Owns a handle, or none, and gives it back when it ends.
class OwnedHandle {
public:
    OwnedHandle() = default;
    explicit OwnedHandle(Handle handle) noexcept : m_handle(handle) {}
    OwnedHandle(OwnedHandle&& other) noexcept
        : m_handle(std::exchange(other.m_handle, InvalidHandle)) {}
    OwnedHandle& operator=(OwnedHandle&& other) noexcept {
        std::swap(m_handle, other.m_handle);
        return *this;
    }
    ~OwnedHandle() {
        if (IsOpen())
            Close();
    }

    bool IsOpen() const { return m_handle != InvalidHandle; }
    Handle Get() const { return m_handle; }

    /// Gives the handle back now; asks the system to close InvalidHandle when there is none.
    bool Close() { return CloseHandle(std::exchange(m_handle, InvalidHandle)); }

private:
    Handle m_handle = InvalidHandle;
};

} // namespace OSAL
