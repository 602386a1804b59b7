#include "tests/Modules/xFramework/Utilities/FailingMemory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

std::atomic<std::size_t> failingSize{0};

void* Allocate(std::size_t size) noexcept {
    if (size != 0 && size == failingSize.load())
        return nullptr;
    return std::malloc(size != 0 ? size : 1);
}

} // namespace

namespace Utilities {

FailingMemory::FailingMemory(std::size_t size) {
    failingSize = size;
}

FailingMemory::~FailingMemory() {
    failingSize = 0;
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
    std::free(memory);
}

void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}

void operator delete(void* memory, const std::nothrow_t&) noexcept {
    std::free(memory);
}
