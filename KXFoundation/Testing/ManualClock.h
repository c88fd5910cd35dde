// SPDX-License-Identifier: MIT
#pragma once

#include <map>

#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx::testing {

/// A clock that moves only when it is told: for tests of whatever waits.
///
///     const auto clock = std::make_shared<ManualClock>();
///     const ScopedPort<Clock> scope(clock);
///     toast->showWithTimeout(3);
///     clock->advance(std::chrono::seconds(3));  // the toast is gone when this returns
class KX_EXPORT ManualClock final : public Clock {
  public:
    /// Starts at one hour, with the given time of day.
    explicit ManualClock(WallTime wallTime = WallTime(std::chrono::hours(24 * 365 * 40)));

    [[nodiscard]] std::chrono::nanoseconds now() const noexcept override;
    [[nodiscard]] WallTime wallTime() const noexcept override;
    void runAt(std::chrono::nanoseconds deadline, TimerThread thread, std::function<void()> action) override;

    /// Moves both times on. Before it returns, everything that became due has run, in order and at its own
    /// time, and so has what that gave to queues (see drainQueues in Executor.h; call it on the main thread,
    /// or the main queue's blocks wait for their turn). Timers that are set meanwhile run too if they are
    /// due. A step back does nothing.
    void advance(std::chrono::nanoseconds step);

    /// Sets the time of day alone, as a person does.
    void setWallTime(WallTime wallTime);

    /// How many timers wait.
    [[nodiscard]] std::size_t pendingTimers() const;

  private:
    std::function<void()> takeDue(std::chrono::nanoseconds until);

    mutable Mutex mutex_;
    std::chrono::nanoseconds now_ KX_GUARDED_BY(mutex_) = std::chrono::hours(1);
    std::chrono::nanoseconds wallOffset_ KX_GUARDED_BY(mutex_);  // time of day less now_
    std::multimap<std::chrono::nanoseconds, std::function<void()>> timers_ KX_GUARDED_BY(mutex_);
};

}  // namespace kx::testing
