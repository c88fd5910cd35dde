#pragma once

#include <map>
#include <thread>

#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx {

/// The system's monotonic clock and time of day. Background timers run on one thread of its own, made with
/// the first of them; the main thread's are the event loop's. What has not run when the clock is destroyed
/// never runs.
class SystemClock final : public Clock {
  public:
    SystemClock() = default;
    ~SystemClock() override;

    [[nodiscard]] std::chrono::nanoseconds now() const noexcept override;
    [[nodiscard]] WallTime wallTime() const noexcept override;
    void runAt(std::chrono::nanoseconds deadline, TimerThread thread, std::function<void()> action) override;

  private:
    void serveTimers();

    Mutex mutex_;
    Condition changed_;
    std::multimap<std::chrono::nanoseconds, std::function<void()>> timers_ KX_GUARDED_BY(mutex_);
    bool ending_ KX_GUARDED_BY(mutex_) = false;
    std::thread thread_ KX_GUARDED_BY(mutex_);
};

}  // namespace kx
