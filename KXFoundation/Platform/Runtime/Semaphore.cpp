// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Platform/Runtime/Semaphore.h>

namespace kx {

struct Semaphore::State {
    explicit State(std::size_t n) : count(n) {}

    /// Takes one; false if `expired` turns true first.
    bool take(const bool& expired) {
        const MutexLock lock(mutex);
        while (count == 0 && !expired) Executor::slot().current().wait(mutex, changed);
        if (count == 0) return false;
        --count;
        return true;
    }

    Mutex mutex;
    WaitPoint changed;
    std::size_t count KX_GUARDED_BY(mutex);
};

Semaphore::Semaphore(std::size_t count) : state_(std::make_shared<State>(count)) {}

void Semaphore::signal() {
    const MutexLock lock(state_->mutex);
    ++state_->count;
    Executor::slot().current().wake(state_->changed);
}

void Semaphore::wait() {
    static_cast<void>(state_->take(false));
}

bool Semaphore::waitFor(std::chrono::nanoseconds timeout) {
    if (state_->take(true)) return true;  // most often, and then no timer is left behind
    if (timeout <= std::chrono::nanoseconds(0)) return false;
    Clock& clock = Clock::slot().current();
    const auto now = clock.now();
    const auto expired = std::make_shared<bool>(false);  // guarded by the state's mutex
    clock.runAt(now + std::min(timeout, std::chrono::nanoseconds::max() - now), TimerThread::Background,
                [state = state_, expired] {
                    const MutexLock lock(state->mutex);
                    *expired = true;
                    Executor::slot().current().wake(state->changed);
                });
    return state_->take(*expired);
}

}  // namespace kx
