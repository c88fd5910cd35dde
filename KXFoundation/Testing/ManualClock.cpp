// SPDX-License-Identifier: MIT

#include <algorithm>
#include <utility>

#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Testing/ManualClock.h>

namespace kx::testing {

ManualClock::ManualClock(WallTime wallTime) : wallOffset_(wallTime.time_since_epoch() - now_) {}

std::chrono::nanoseconds ManualClock::now() const noexcept {
    const MutexLock lock(mutex_);
    return now_;
}

Clock::WallTime ManualClock::wallTime() const noexcept {
    const MutexLock lock(mutex_);
    return WallTime(std::chrono::duration_cast<WallTime::duration>(now_ + wallOffset_));
}

void ManualClock::runAt(std::chrono::nanoseconds deadline, TimerThread, std::function<void()> action) {
    const MutexLock lock(mutex_);
    timers_.emplace(deadline, std::move(action));
}

void ManualClock::advance(std::chrono::nanoseconds step) {
    const std::chrono::nanoseconds until = now() + step;
    drainQueues();  // what runs already may set timers
    while (const auto action = takeDue(until)) {
        action();
        drainQueues();
    }
    const MutexLock lock(mutex_);
    now_ = std::max(now_, until);
}

void ManualClock::setWallTime(WallTime wallTime) {
    const MutexLock lock(mutex_);
    wallOffset_ = wallTime.time_since_epoch() - now_;
}

std::size_t ManualClock::pendingTimers() const {
    const MutexLock lock(mutex_);
    return timers_.size();
}

/// The next timer that is due by then, or nothing; moves to its deadline.
std::function<void()> ManualClock::takeDue(std::chrono::nanoseconds until) {
    const MutexLock lock(mutex_);
    const auto first = timers_.begin();
    if (first == timers_.end() || first->first > until) return nullptr;
    now_ = std::max(now_, first->first);
    return std::move(timers_.extract(first).mapped());
}

}  // namespace kx::testing
