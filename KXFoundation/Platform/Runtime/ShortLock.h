// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstdint>

#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx {

/// A mutex of four bytes for what takes less time than putting a thread to sleep and waking it: whoever waits
/// asks some times, without taking the line from the owner, before it sleeps.
class KX_CAPABILITY ShortLock {
  public:
    constexpr ShortLock() noexcept = default;
    ShortLock(const ShortLock&) = delete;
    ShortLock& operator=(const ShortLock&) = delete;

    void lock() noexcept KX_ACQUIRE() {
        if (!tryLock()) wait();
    }
    [[nodiscard]] bool tryLock() noexcept KX_TRY_ACQUIRE(true) {
        std::uint32_t expected = kFree;
        return state_.compare_exchange_strong(expected, kHeld, std::memory_order_acquire,
                                              std::memory_order_relaxed);
    }
    void unlock() noexcept KX_RELEASE() {
        if (state_.exchange(kFree, std::memory_order_release) == kAwaited) state_.notify_one();
    }

  private:
    static constexpr std::uint32_t kFree = 0, kHeld = 1, kAwaited = 2;

    __attribute__((noinline)) void wait() noexcept KX_ACQUIRE()
        KX_THREAD_ANNOTATION(no_thread_safety_analysis) {
        constexpr int kTries = 200;
        for (int i = 0; i < kTries; ++i) {
            pause();
            if (state_.load(std::memory_order_relaxed) == kFree && tryLock()) return;
        }
        while (state_.exchange(kAwaited, std::memory_order_acquire) != kFree)
            state_.wait(kAwaited, std::memory_order_relaxed);
    }
    static void pause() noexcept {
#ifdef __x86_64__
        __builtin_ia32_pause();
#elif defined(__aarch64__)
        asm volatile("isb");
#endif
    }

    std::atomic<std::uint32_t> state_{kFree};
};

/// Holds a ShortLock for one scope.
class KX_SCOPED_CAPABILITY ShortLocking {
  public:
    explicit ShortLocking(ShortLock& lock) KX_ACQUIRE(lock) : lock_(lock) { lock_.lock(); }
    ~ShortLocking() KX_RELEASE() { lock_.unlock(); }
    ShortLocking(const ShortLocking&) = delete;
    ShortLocking& operator=(const ShortLocking&) = delete;

  private:
    ShortLock& lock_;
};

}  // namespace kx
