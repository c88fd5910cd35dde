// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstddef>
#include <memory>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Counts what may be taken: wait() takes one and waits while there is none, signal() gives one. A background
/// thread that waits does not keep other blocks from running. Any thread.
class KX_EXPORT Semaphore {
  public:
    explicit Semaphore(std::size_t count = 0);

    void signal();
    void wait();
    /// Takes one if there is one before the clock has moved on by `timeout`; false if there is not.
    [[nodiscard]] bool waitFor(std::chrono::nanoseconds timeout);

  private:
    struct State;
    std::shared_ptr<State> state_;  // shared with the timers of waits that may have ended
};

}  // namespace kx
