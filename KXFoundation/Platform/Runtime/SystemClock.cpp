// SPDX-License-Identifier: MIT

#include <map>
#include <system_error>
#include <thread>
#include <utility>

#include <time.h>

#include <KXFoundation/Platform/Runtime/EventLoop.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>
#include <KXFoundation/Platform/Runtime/SystemClock.h>

namespace kx {

using Steady = std::chrono::steady_clock;

struct SystemClock::Timers {
    Mutex mutex;
    Condition changed;
    std::multimap<std::chrono::nanoseconds, std::function<void()>> actions KX_GUARDED_BY(mutex);
    bool ending KX_GUARDED_BY(mutex) = false;
    std::thread thread KX_GUARDED_BY(mutex);

    void serve();
    void start(const std::shared_ptr<Timers>& self) KX_REQUIRES(mutex);
};

void SystemClock::Timers::serve() {
    MutexLock lock(mutex);
    while (!ending) {
        if (actions.empty()) {
            changed.wait(mutex);
        } else if (const auto first = actions.begin(); first->first > Steady::now().time_since_epoch()) {
            changed.waitUntil(mutex, Steady::time_point(first->first));
        } else {
            std::function<void()> action = std::move(actions.extract(first).mapped());
            lock.unlock();
            action();
            action = nullptr;  // what it captured goes without the lock too
            lock.lock();
        }
    }
}

void SystemClock::Timers::start(const std::shared_ptr<Timers>& self) {
    try {
        thread = std::thread([self] { self->serve(); });
    } catch (const std::system_error& error) {  // the next timer tries again
        logError("SystemClock", Error::fromErrno(error.code().value(), "a thread for timers"));
    }
}

SystemClock::SystemClock() : timers_(std::make_shared<Timers>()) {}

SystemClock::~SystemClock() {
    MutexLock lock(timers_->mutex);
    timers_->ending = true;
    timers_->changed.notifyOne();
    std::thread thread = std::move(timers_->thread);
    lock.unlock();
    if (thread.get_id() == std::this_thread::get_id()) {
        thread.detach();
    } else if (thread.joinable()) {
        thread.join();
    }
}

std::chrono::nanoseconds SystemClock::now() const noexcept {
    return Steady::now().time_since_epoch();
}

/// What the system noted at its last tick.
std::chrono::nanoseconds SystemClock::coarseNow() const noexcept {
    timespec time{};
    clock_gettime(CLOCK_MONOTONIC_COARSE, &time);
    return std::chrono::seconds(time.tv_sec) + std::chrono::nanoseconds(time.tv_nsec);
}

Clock::WallTime SystemClock::wallTime() const noexcept {
    return std::chrono::system_clock::now();
}

void SystemClock::runAt(std::chrono::nanoseconds deadline, TimerThread thread, std::function<void()> action) {
    if (thread == TimerThread::Main) return EventLoop::main().runAt(deadline, std::move(action));
    const MutexLock lock(timers_->mutex);
    const auto placed = timers_->actions.emplace(deadline, std::move(action));
    if (!timers_->thread.joinable()) timers_->start(timers_);
    if (placed == timers_->actions.begin()) timers_->changed.notifyOne();
}

}  // namespace kx
