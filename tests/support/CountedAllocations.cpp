#include "support/CountedAllocations.h"

#include <cstdlib>
#include <new>

namespace {
constinit thread_local std::size_t allocations = 0;
}

std::size_t kx::testing::allocationsOfThisThread() noexcept {
    return allocations;
}

// Libraries ask for memory this way too (std::stable_sort does); what deletes it is below.
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    ++allocations;
    return std::malloc(size ? size : 1);
}
void* operator new(std::size_t size) {
    ++allocations;
    if (void* memory = std::malloc(size ? size : 1)) return memory;
    throw std::bad_alloc();
}
void operator delete(void* memory) noexcept {
    std::free(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    std::free(memory);
}
