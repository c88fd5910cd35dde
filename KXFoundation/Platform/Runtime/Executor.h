// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>

namespace kx {

/// What threads wait on through an executor: a condition variable and who sleeps on it.
struct WaitPoint {
    Condition condition;
    std::size_t sleepers = 0;  // these two are the executor's
    std::uint64_t wakes = 0;
};

/// The port under every queue: who runs work, and how a thread waits for it. The adapter is a pool of threads
/// and the main thread's event loop; a test may put a scheduler of its own in place. Any thread.
class KX_EXPORT Executor {
  public:
    using Job = std::function<void()>;

    virtual ~Executor() = default;

    /// Runs the job on the main thread when its loop comes to it, in the order of the calls.
    virtual void runOnMain(Job job) = 0;

    /// Runs the job soon on a background thread.
    virtual void runInBackground(Job job) = 0;

    /// Which of `count` blocks of a concurrent queue, in the order of their coming, begins next: threads
    /// begin the first, but nothing promises that it gets on first. A scheduler may answer any below `count`.
    [[nodiscard]] virtual std::size_t choose(std::size_t /*count*/) { return 0; }

    /// Gives the mutex up, waits until the point is woken, and takes it again; other work goes on meanwhile.
    /// Wakes spuriously.
    virtual void wait(Mutex& mutex, WaitPoint& point) KX_REQUIRES(mutex) = 0;
    /// Wakes every thread that waits at the point. The caller holds the mutex that they wait under.
    virtual void wake(WaitPoint& point) = 0;

    /// Returns once no job is left to start and each that has begun has ended or waits at a wait point. The
    /// main thread runs its own jobs meanwhile; to another thread's call those do not count. A caller error
    /// from inside a background job.
    virtual void drain() = 0;

    /// Whether it drops what it is given from now on, as at the end of the process.
    [[nodiscard]] virtual bool hasEnded() const { return false; }

    static PortSlot<Executor>& slot();
    static std::shared_ptr<Executor> makeDefault();
};

/// Returns once nothing is left to do on any queue; see Executor::drain. For tests and for the end of a
/// scope.
KX_EXPORT void drainQueues();

}  // namespace kx
