#pragma once

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

/// Counts what a program asks for through `new`. A program one of whose files includes this header has the
/// operator replaced, in the libraries that it links too; over-aligned types keep the standard one.
namespace kx::testing {

namespace counted {

inline constexpr std::size_t kHeader = alignof(std::max_align_t);
inline constinit thread_local std::size_t allocations = 0;
inline constinit std::atomic<std::size_t> held{0}, peak{0};

inline void* take(std::size_t size) noexcept {
    ++allocations;
    auto* const block = static_cast<unsigned char*>(std::malloc(size + kHeader));
    if (!block) std::abort();
    *reinterpret_cast<std::size_t*>(block) = size;
    const std::size_t now = held += size;
    for (std::size_t most = peak; most < now && !peak.compare_exchange_weak(most, now);) {
    }
    return block + kHeader;
}

inline void giveBack(void* memory) noexcept {
    if (!memory) return;
    auto* const block = static_cast<unsigned char*>(memory) - kHeader;
    held -= *reinterpret_cast<std::size_t*>(block);
    std::free(block);
}

}  // namespace counted

/// How often the calling thread has asked for memory.
[[nodiscard]] inline std::size_t allocationsOfThisThread() noexcept {
    return counted::allocations;
}

/// How often a call of `work` does.
template <class Work>
[[nodiscard]] std::size_t allocationsOf(const Work& work) {
    const std::size_t before = allocationsOfThisThread();
    work();
    return allocationsOfThisThread() - before;
}

/// What the program holds, in bytes, on all threads.
[[nodiscard]] inline std::size_t heldMemory() noexcept {
    return counted::held;
}

/// The most it ever held since the last call of this.
inline std::size_t takePeakMemory() noexcept {
    return counted::peak.exchange(counted::held);
}

}  // namespace kx::testing

// Weak, so that several files of a program may include them.
[[gnu::weak]] void* operator new(std::size_t size) {
    return kx::testing::counted::take(size);
}
[[gnu::weak]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return kx::testing::counted::take(size);
}
[[gnu::weak]] void* operator new[](std::size_t size) {
    return kx::testing::counted::take(size);
}
[[gnu::weak]] void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return kx::testing::counted::take(size);
}
[[gnu::weak]] void operator delete(void* memory) noexcept {
    kx::testing::counted::giveBack(memory);
}
[[gnu::weak]] void operator delete(void* memory, std::size_t) noexcept {
    kx::testing::counted::giveBack(memory);
}
[[gnu::weak]] void operator delete[](void* memory) noexcept {
    kx::testing::counted::giveBack(memory);
}
[[gnu::weak]] void operator delete[](void* memory, std::size_t) noexcept {
    kx::testing::counted::giveBack(memory);
}
