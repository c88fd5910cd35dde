// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdlib>
#include <new>

/// Counts what a program asks for through `new`. A program one of whose files includes this header has the
/// operator replaced, in the libraries that it links too; over-aligned types keep the standard one.
namespace kx::testing {

/// What the operators below stand on.
class CountedMemory {
  public:
    [[nodiscard]] static void* take(std::size_t size) noexcept {
        ++allocations_;
        // One byte more: LeakSanitizer takes a pointer to the end of a block for a pointer to nothing.
        auto* const block = static_cast<unsigned char*>(std::malloc(size + kHeader + 1));
        if (!block) std::abort();
        *reinterpret_cast<std::size_t*>(block) = size;
        const std::size_t now = held_ += size;
        for (std::size_t most = peak_; most < now && !peak_.compare_exchange_weak(most, now);) {
        }
        return block + kHeader;
    }
    static void giveBack(void* memory) noexcept {
        if (!memory) return;
        auto* const block = static_cast<unsigned char*>(memory) - kHeader;
        held_ -= *reinterpret_cast<std::size_t*>(block);
        std::free(block);
    }

  private:
    friend std::size_t allocationsOfThisThread() noexcept;
    friend std::size_t heldMemory() noexcept;
    friend std::size_t takePeakMemory() noexcept;

    static constexpr std::size_t kHeader = alignof(std::max_align_t);
    static inline constinit thread_local std::size_t allocations_ = 0;
    static inline constinit std::atomic<std::size_t> held_{0}, peak_{0};
};

/// How often the calling thread has asked for memory.
[[nodiscard]] inline std::size_t allocationsOfThisThread() noexcept {
    return CountedMemory::allocations_;
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
    return CountedMemory::held_;
}

/// The most it ever held since the last call of this.
inline std::size_t takePeakMemory() noexcept {
    return CountedMemory::peak_.exchange(CountedMemory::held_);
}

}  // namespace kx::testing

// Weak, so that several files of a program may include them.
[[gnu::weak]] void* operator new(std::size_t size) {
    return kx::testing::CountedMemory::take(size);
}
[[gnu::weak]] void* operator new(std::size_t size, const std::nothrow_t&) noexcept {
    return kx::testing::CountedMemory::take(size);
}
[[gnu::weak]] void* operator new[](std::size_t size) {
    return kx::testing::CountedMemory::take(size);
}
[[gnu::weak]] void* operator new[](std::size_t size, const std::nothrow_t&) noexcept {
    return kx::testing::CountedMemory::take(size);
}
[[gnu::weak]] void operator delete(void* memory) noexcept {
    kx::testing::CountedMemory::giveBack(memory);
}
[[gnu::weak]] void operator delete(void* memory, std::size_t) noexcept {
    kx::testing::CountedMemory::giveBack(memory);
}
[[gnu::weak]] void operator delete[](void* memory) noexcept {
    kx::testing::CountedMemory::giveBack(memory);
}
[[gnu::weak]] void operator delete[](void* memory, std::size_t) noexcept {
    kx::testing::CountedMemory::giveBack(memory);
}
