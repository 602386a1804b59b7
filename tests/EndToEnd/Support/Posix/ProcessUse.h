#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>

namespace EndToEnd {

/// What a process has of the system at one moment.
struct ProcessUse {
    /// In memory.
    std::uint64_t residentBytes = 0;
    /// Open files, sockets among them.
    std::size_t descriptors = 0;
    std::size_t sockets = 0;
    bool hasChildren = false;
};

/// Nothing when the process has ended.
std::optional<ProcessUse> UseOf(std::uint64_t process);

} // namespace EndToEnd
