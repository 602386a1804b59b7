#include "tests/Support/TestMemory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> failingSize{0};
/// Requests that still succeed before one fails; below 0 when none is to fail.
std::atomic<std::int64_t> requestsBeforeFailure{-1};
std::atomic<std::size_t> requests{0};
std::atomic<std::int64_t> pieces{0};

bool IsToFail(std::size_t size) noexcept {
    if (size != 0 && size == failingSize.load())
        return true;
    return requestsBeforeFailure.load() >= 0 && requestsBeforeFailure-- == 0;
}

void* Allocate(std::size_t size) noexcept {
    ++requests;
    if (IsToFail(size))
        return nullptr;
    void* const memory = std::malloc(size != 0 ? size : 1);
    if (memory != nullptr)
        ++pieces;
    return memory;
}

void Free(void* memory) noexcept {
    if (memory != nullptr)
        --pieces;
    std::free(memory);
}

} // namespace

namespace TestSupport {

FailingSize::FailingSize(std::size_t size) {
    failingSize = size;
}

FailingSize::~FailingSize() {
    failingSize = 0;
}

FailingRequest::FailingRequest(std::size_t number) {
    requestsBeforeFailure = static_cast<std::int64_t>(number);
}

FailingRequest::~FailingRequest() {
    requestsBeforeFailure = -1;
}

bool FailingRequest::HasFailed() const {
    return requestsBeforeFailure < 0;
}

std::size_t CountRequests() {
    return requests;
}

std::int64_t CountMemoryPieces() {
    return pieces;
}

} // namespace TestSupport

// The memory of the whole test program.

void* operator new(std::size_t size) {
    void* const memory = Allocate(size);
    if (memory == nullptr)
        throw std::bad_alloc();
    return memory;
}

void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return Allocate(size);
}

void operator delete(void* memory) noexcept {
    Free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    Free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
    Free(memory);
}
