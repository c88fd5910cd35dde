#include "support/CountedMemory.h"

#include <atomic>
#include <cstdlib>
#include <new>

namespace {

constexpr std::size_t kHeader = alignof(std::max_align_t);
constinit std::atomic<std::size_t> held{0}, peak{0};

void* take(std::size_t size) noexcept {
    auto* const block = static_cast<unsigned char*>(std::malloc(size + kHeader));
    if (!block) std::abort();
    *reinterpret_cast<std::size_t*>(block) = size;
    const std::size_t now = held += size;
    for (std::size_t most = peak; most < now && !peak.compare_exchange_weak(most, now);) {
    }
    return block + kHeader;
}

void giveBack(void* memory) noexcept {
    if (!memory) return;
    auto* const block = static_cast<unsigned char*>(memory) - kHeader;
    held -= *reinterpret_cast<std::size_t*>(block);
    std::free(block);
}

}  // namespace

std::size_t kx::testing::heldMemory() noexcept {
    return held;
}

std::size_t kx::testing::takePeakMemory() noexcept {
    return peak.exchange(held);
}

void* operator new(std::size_t size) {
    return take(size);
}
void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return take(size);
}
void* operator new[](std::size_t size) {
    return take(size);
}
void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return take(size);
}
void operator delete(void* memory) noexcept {
    giveBack(memory);
}
void operator delete(void* memory, std::size_t) noexcept {
    giveBack(memory);
}
void operator delete[](void* memory) noexcept {
    giveBack(memory);
}
void operator delete[](void* memory, std::size_t) noexcept {
    giveBack(memory);
}
