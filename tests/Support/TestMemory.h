#pragma once

#include <cstddef>
#include <cstdint>

// The memory of a test program that links the library TestMemory: it counts, and fails when it is
// told to. Failures are for one test at a time.
namespace TestSupport {

/// For as long as it lives, each request for exactly this many bytes of memory fails. Objects of
/// one class are picked out by their size.
class FailingSize {
public:
    explicit FailingSize(std::size_t size);
    ~FailingSize();

    FailingSize(const FailingSize&) = delete;
    FailingSize& operator=(const FailingSize&) = delete;
};

/// For as long as it lives, one request for memory fails: the one with this number, from 0.
class FailingRequest {
public:
    explicit FailingRequest(std::size_t number);
    ~FailingRequest();

    FailingRequest(const FailingRequest&) = delete;
    FailingRequest& operator=(const FailingRequest&) = delete;

    /// Whether the request has come.
    bool HasFailed() const;
};

/// How often the program has asked for memory up to now.
std::size_t CountRequests();

/// How many pieces of memory the program holds.
std::int64_t CountMemoryPieces();

} // namespace TestSupport
