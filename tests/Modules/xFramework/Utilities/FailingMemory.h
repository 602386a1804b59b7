#pragma once

#include <cstddef>

namespace Utilities {

/// For as long as it lives, each request for exactly this many bytes of memory fails. Objects of
/// one class are picked out by their size.
class FailingMemory {
public:
    explicit FailingMemory(std::size_t size);
    ~FailingMemory();

    FailingMemory(const FailingMemory&) = delete;
    FailingMemory& operator=(const FailingMemory&) = delete;
};

} // namespace Utilities
