#include "tests/Support/FailingAllocation.h"

#include <cstdlib>
#include <new>

namespace {

/// How many requests are still granted before one fails; none fails below 0.
std::ptrdiff_t requestsLeft = -1;

void* Allocate(std::size_t size) noexcept {
    if (requestsLeft >= 0 && requestsLeft-- == 0)
        return nullptr;
    return std::malloc(size != 0 ? size : 1);
}

} // namespace

namespace TestSupport {

FailingAllocation::FailingAllocation(std::size_t requestsBefore) {
    requestsLeft = static_cast<std::ptrdiff_t>(requestsBefore);
}

FailingAllocation::~FailingAllocation() {
    requestsLeft = -1;
}

bool FailingAllocation::HasFailed() const {
    return requestsLeft < 0;
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
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
