#include "tests/Modules/xFramework/Utilities/FailingMemory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> failingSize{0};
/// Requests that still succeed before one fails; below 0 when none is to fail.
std::atomic<std::int64_t> requestsBeforeFailure{-1};
std::atomic<std::int64_t> pieces{0};

bool IsToFail(std::size_t size) noexcept {
    if (size != 0 && size == failingSize.load())
        return true;
    return requestsBeforeFailure.load() >= 0 && requestsBeforeFailure-- == 0;
}

void* Allocate(std::size_t size) noexcept {
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

namespace Utilities {

FailingMemory::FailingMemory(std::size_t size) {
    failingSize = size;
}

FailingMemory::~FailingMemory() {
    failingSize = 0;
}

FailingRequest::FailingRequest(std::int64_t number) {
    requestsBeforeFailure = number;
}

FailingRequest::~FailingRequest() {
    requestsBeforeFailure = -1;
}

std::int64_t CountMemoryPieces() {
    return pieces;
}

} // namespace Utilities

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
