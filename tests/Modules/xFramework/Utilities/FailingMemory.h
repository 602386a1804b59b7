#pragma once

#include <cstddef>
#include <cstdint>

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

/// For as long as it lives, one request for memory fails: the one with this number, from 0.
class FailingRequest {
public:
    explicit FailingRequest(std::int64_t number);
    ~FailingRequest();

    FailingRequest(const FailingRequest&) = delete;
    FailingRequest& operator=(const FailingRequest&) = delete;
};

/// How many pieces of memory the test program holds.
std::int64_t CountMemoryPieces();

} // namespace Utilities
