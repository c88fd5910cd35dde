// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Runtime/Clock.h>

namespace kx {

/// The system's monotonic clock and time of day. Background timers run on one thread of its own, made with
/// the first of them; the main thread's are the event loop's. What has not run when the clock is destroyed
/// never runs; an action may drop the last reference to it.
class SystemClock final : public Clock {
  public:
    SystemClock();
    ~SystemClock() override;

    [[nodiscard]] std::chrono::nanoseconds now() const noexcept override;
    [[nodiscard]] std::chrono::nanoseconds coarseNow() const noexcept override;
    [[nodiscard]] WallTime wallTime() const noexcept override;
    void runAt(std::chrono::nanoseconds deadline, TimerThread thread, std::function<void()> action) override;

  private:
    struct Timers;
    const std::shared_ptr<Timers> timers_;  // the thread's too
};

}  // namespace kx
