#pragma once

#include <cstdint>

namespace OSAL {

/// A file, process or thread of the operating system.
using Handle = std::uint64_t;

inline constexpr Handle InvalidHandle = ~Handle{0};

/// Gives a handle back; false when it names nothing open. InvalidHandle does no harm; Windows takes
/// it for the running process and returns true.
bool CloseHandle(Handle handle);

} // namespace OSAL
