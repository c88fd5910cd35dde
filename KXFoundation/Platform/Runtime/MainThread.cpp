// SPDX-License-Identifier: MIT

#include <atomic>
#include <memory>
#include <utility>

#include <pthread.h>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Epoch.h>
#include <KXFoundation/Platform/Runtime/EventLoop.h>
#include <KXFoundation/Platform/Runtime/MainThread.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

namespace {

using Role = ScopedThreadRole::Role;

std::atomic<pthread_t> mainThread{pthread_self()};  // the library is loaded on the first thread
constinit std::atomic<bool> adopted{false};
constinit thread_local Role role = Role::Actual;

/// An object that waits for the readers of its thread to leave.
struct AfterReaders final : Retirable {
    explicit AfterReaders(NSObject* o) : object(o) {}
    ~AfterReaders() override { MainThreadDeleter()(object); }
    NSObject* object;
};

void deleteAfterReaders(NSObject* object) {
    if (EpochReading::isInside()) {
        retire(new AfterReaders(object));
    } else {
        delete object;
    }
}

}  // namespace

bool isMainThread() noexcept {
    if (role != Role::Actual) return role == Role::Main;
    return pthread_equal(mainThread.load(std::memory_order_relaxed), pthread_self());
}

void adoptMainThread() noexcept {
    mainThread.store(pthread_self(), std::memory_order_relaxed);
    adopted.store(true, std::memory_order_relaxed);
}

bool mainQueueIsServed() noexcept {
    return adopted.load(std::memory_order_relaxed) || EventLoop::main().hasTurned();
}

void MainThreadDeleter::operator()(NSObject* object) const {
    if (!isMainThread() && mainQueueIsServed()) {
        // Owned by the block, so that a block which never runs deletes all the same.
        const std::shared_ptr<NSObject> last(object, deleteAfterReaders);
        DispatchQueue::main().async([last] {});
    } else {
        deleteAfterReaders(object);
    }
}

ScopedThreadRole::ScopedThreadRole(Role r) noexcept : former_(std::exchange(role, r)) {}

ScopedThreadRole::~ScopedThreadRole() {
    role = former_;
}

}  // namespace kx
