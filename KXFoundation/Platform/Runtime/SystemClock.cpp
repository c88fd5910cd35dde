#include <utility>

#include <KXFoundation/Platform/Runtime/EventLoop.h>
#include <KXFoundation/Platform/Runtime/SystemClock.h>

namespace kx {

namespace {
using Steady = std::chrono::steady_clock;
}

SystemClock::~SystemClock() {
    MutexLock lock(mutex_);
    ending_ = true;
    changed_.notifyOne();
    std::thread ending = std::move(thread_);
    lock.unlock();
    if (ending.joinable()) ending.join();
}

std::chrono::nanoseconds SystemClock::now() const noexcept {
    return Steady::now().time_since_epoch();
}

Clock::WallTime SystemClock::wallTime() const noexcept {
    return std::chrono::system_clock::now();
}

void SystemClock::runAt(std::chrono::nanoseconds deadline, TimerThread thread, std::function<void()> action) {
    if (thread == TimerThread::Main) return EventLoop::main().runAt(deadline, std::move(action));
    const MutexLock lock(mutex_);
    const auto placed = timers_.emplace(deadline, std::move(action));
    if (!thread_.joinable()) thread_ = std::thread([this] { serveTimers(); });
    if (placed == timers_.begin()) changed_.notifyOne();
}

void SystemClock::serveTimers() {
    MutexLock lock(mutex_);
    while (!ending_) {
        if (timers_.empty()) {
            changed_.wait(mutex_);
        } else if (const auto first = timers_.begin(); first->first > now()) {
            changed_.waitUntil(mutex_, Steady::time_point(first->first));
        } else {
            std::function<void()> action = std::move(timers_.extract(first).mapped());
            lock.unlock();
            action();
            action = nullptr;  // what it captured goes without the lock too
            lock.lock();
        }
    }
}

}  // namespace kx
