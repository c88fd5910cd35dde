// SPDX-License-Identifier: MIT

#include <cerrno>

#include <KXFoundation/Platform/Runtime/ReadWriteLock.h>

namespace kx {

ReadWriteLock::ReadWriteLock() noexcept {
    pthread_rwlock_init(&lock_, nullptr);
}

ReadWriteLock::~ReadWriteLock() {
    pthread_rwlock_destroy(&lock_);
}

bool ReadWriteLock::lockShared() noexcept {
    int error;
    while ((error = pthread_rwlock_rdlock(&lock_)) ==
           EAGAIN) {  // as many readers as can be counted: wait for one
    }
    return error == 0;
}

bool ReadWriteLock::lockExclusive() noexcept {
    return pthread_rwlock_wrlock(&lock_) == 0;
}

void ReadWriteLock::unlock() noexcept {
    pthread_rwlock_unlock(&lock_);
}

}  // namespace kx
