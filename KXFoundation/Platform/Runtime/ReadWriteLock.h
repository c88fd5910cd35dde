// SPDX-License-Identifier: MIT
#pragma once

#include <pthread.h>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// One reader/writer lock with the system's default attributes, not recursive. Unlike std::shared_mutex it
/// answers instead of throwing where the calling thread would wait for itself.
class KX_EXPORT ReadWriteLock {
  public:
    ReadWriteLock() noexcept;
    ~ReadWriteLock();
    ReadWriteLock(const ReadWriteLock&) = delete;
    ReadWriteLock& operator=(const ReadWriteLock&) = delete;

    /// Waits for the lock, shared with other readers; false, without it, if this thread holds it exclusively.
    [[nodiscard]] bool lockShared() noexcept;
    /// Waits for the lock alone; false, without it, if this thread holds it exclusively already.
    [[nodiscard]] bool lockExclusive() noexcept;
    void unlock() noexcept;

  private:
    pthread_rwlock_t lock_;
};

}  // namespace kx
