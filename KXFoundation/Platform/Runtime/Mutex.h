// SPDX-License-Identifier: MIT
#pragma once

#include <condition_variable>
#include <mutex>

/// A mutex that clang's -Wthread-safety understands: a field says which lock guards it, a function which lock
/// it needs, and the compiler refuses what breaks either. Other compilers see an ordinary std::mutex.
#if defined(__clang__)
#define KX_THREAD_ANNOTATION(attribute) __attribute__((attribute))
#else
#define KX_THREAD_ANNOTATION(attribute)
#endif
#define KX_CAPABILITY KX_THREAD_ANNOTATION(capability("mutex"))
#define KX_SCOPED_CAPABILITY KX_THREAD_ANNOTATION(scoped_lockable)
#define KX_GUARDED_BY(lock) KX_THREAD_ANNOTATION(guarded_by(lock))
#define KX_REQUIRES(...) KX_THREAD_ANNOTATION(requires_capability(__VA_ARGS__))
#define KX_EXCLUDES(...) KX_THREAD_ANNOTATION(locks_excluded(__VA_ARGS__))
#define KX_ACQUIRE(...) KX_THREAD_ANNOTATION(acquire_capability(__VA_ARGS__))
#define KX_TRY_ACQUIRE(...) KX_THREAD_ANNOTATION(try_acquire_capability(__VA_ARGS__))
#define KX_RELEASE(...) KX_THREAD_ANNOTATION(release_capability(__VA_ARGS__))

namespace kx {

class KX_CAPABILITY Mutex {
  public:
    constexpr Mutex() noexcept = default;
    Mutex(const Mutex&) = delete;
    Mutex& operator=(const Mutex&) = delete;

    void lock() KX_ACQUIRE() { mutex_.lock(); }
    [[nodiscard]] bool tryLock() KX_TRY_ACQUIRE(true) { return mutex_.try_lock(); }
    void unlock() KX_RELEASE() { mutex_.unlock(); }

  private:
    friend class Condition;
    std::mutex mutex_;
};

/// Holds a mutex for one scope; may be opened and closed again inside it.
class KX_SCOPED_CAPABILITY MutexLock {
  public:
    explicit MutexLock(Mutex& mutex) KX_ACQUIRE(mutex) : mutex_(mutex) { mutex_.lock(); }
    ~MutexLock() KX_RELEASE() {
        if (held_) mutex_.unlock();
    }
    MutexLock(const MutexLock&) = delete;
    MutexLock& operator=(const MutexLock&) = delete;

    void unlock() KX_RELEASE() {
        held_ = false;
        mutex_.unlock();
    }
    void lock() KX_ACQUIRE() {
        mutex_.lock();
        held_ = true;
    }

  private:
    Mutex& mutex_;
    bool held_ = true;
};

/// A condition variable for Mutex. Wake-ups may be spurious: wait in a loop over what is waited for.
class Condition {
  public:
    void wait(Mutex& mutex) KX_REQUIRES(mutex) {
        std::unique_lock lock(mutex.mutex_, std::adopt_lock);
        condition_.wait(lock);
        lock.release();  // the caller still holds it
    }
    template <class TimePoint>
    void waitUntil(Mutex& mutex, const TimePoint& deadline) KX_REQUIRES(mutex) {
        std::unique_lock lock(mutex.mutex_, std::adopt_lock);
        condition_.wait_until(lock, deadline);
        lock.release();
    }
    void notifyOne() noexcept { condition_.notify_one(); }
    void notifyAll() noexcept { condition_.notify_all(); }

  private:
    std::condition_variable condition_;
};

}  // namespace kx
