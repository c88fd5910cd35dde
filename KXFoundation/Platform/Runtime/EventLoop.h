// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// The main thread's loop: runs the main queue's blocks, the main thread's timers, and a callback for each
/// descriptor that is ready. It sleeps in epoll, and makes no turn while there is nothing to do.
///
/// An application with a loop of its own calls neither run() nor runOnce(): it polls descriptor() for reading
/// and calls drain() when that is readable (examples/loops/ shows two such loops).
///
/// Main thread, but for perform(), runAt() and stop(), which any thread may call.
class KX_EXPORT EventLoop {
  public:
    using Callback = std::function<void()>;

    /// Made at first need, never destroyed.
    [[nodiscard]] static EventLoop& main();

    /// Runs until stop().
    void run();
    /// Ends the innermost run() once its current turn is over; without one, the next run() at once.
    void stop();

    /// Waits until there is something to do, for `timeout` at most (for ever without one), and does it. False
    /// if the time ran out.
    bool runOnce(std::optional<std::chrono::nanoseconds> timeout = std::nullopt);

    /// Does what is ready now, without waiting; blocks that come meanwhile wait for the next turn. False if
    /// nothing was ready. May be called from a callback.
    bool drain();

    /// Readable when drain() has something to do. Valid for the life of the process; to be polled only.
    [[nodiscard]] int descriptor() const noexcept;

    /// Calls back on every turn that finds the descriptor readable, or at its end. The loop does not own it;
    /// take it out before it is closed. A second callback for a descriptor replaces the first. False (errno
    /// says why) if it cannot be polled, as a file cannot.
    bool addDescriptor(int descriptor, Callback callback);
    void removeDescriptor(int descriptor);

    /// Calls back before every wait and every drain: for a display connection that reads ahead of its
    /// descriptor, and for what is drawn once per turn. Answers a number for removeBeforeWait().
    int addBeforeWait(Callback callback);
    void removeBeforeWait(int number);

    /// Runs the block in the next turn, blocks in the order of the calls. The main queue is built on this.
    void perform(Callback block);
    /// Runs the blocks that are there, and nothing else of a turn. False if there was none.
    bool performPending();
    /// Runs the block in the first turn at or after the steady clock's `deadline`.
    void runAt(std::chrono::nanoseconds deadline, Callback block);

    /// Whether it has ever made a turn.
    [[nodiscard]] bool hasTurned() const noexcept;

  private:
    EventLoop();
    bool turn(std::optional<std::chrono::nanoseconds> timeout);

    struct State;
    struct WakeForRest;
    const std::unique_ptr<State> state_;
};

}  // namespace kx
