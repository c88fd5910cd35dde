// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>

namespace kx {

/// Which thread a timer runs on.
enum class TimerThread : std::uint8_t { Main, Background };

/// The port of time. Adapters: the system's clocks, and ManualClock, which moves only when it is told. Any
/// thread.
class KX_EXPORT Clock {
  public:
    using WallTime = std::chrono::system_clock::time_point;

    virtual ~Clock() = default;

    /// Time since a fixed moment in the past; never goes back, stands still while the machine sleeps.
    [[nodiscard]] virtual std::chrono::nanoseconds now() const noexcept = 0;

    /// The same as of some milliseconds ago at most, for a fraction of the price.
    [[nodiscard]] virtual std::chrono::nanoseconds coarseNow() const noexcept { return now(); }

    /// The date and time of day as the system's clock has it; jumps when that is set.
    [[nodiscard]] virtual WallTime wallTime() const noexcept = 0;

    /// Runs `action` once when now() has reached `deadline`, at once if it has already, never before this
    /// returns. Actions run in the order of their deadlines, those of one deadline in the order of their
    /// calls. An action is short: it gives longer work to a queue, as DispatchQueue::after does. A timer
    /// cannot be taken back.
    virtual void runAt(std::chrono::nanoseconds deadline, TimerThread thread,
                       std::function<void()> action) = 0;

    static PortSlot<Clock>& slot();
    static std::shared_ptr<Clock> makeDefault();
};

}  // namespace kx
