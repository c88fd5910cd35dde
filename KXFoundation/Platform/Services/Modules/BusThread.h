// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <gio/gio.h>

namespace kx {

/// A thread of its own with a loop of its own, for what stays connected to a bus: signals and calls arrive in
/// the loop. Its end cancels what the thread waits for, ends the loop and joins the thread.
class BusThread {
  public:
    BusThread() = default;
    ~BusThread();
    BusThread(const BusThread&) = delete;
    BusThread& operator=(const BusThread&) = delete;

    /// Runs the steps on the thread; once.
    void start(const char* name, std::function<void()> steps);
    [[nodiscard]] GCancellable* cancellable() const noexcept { return cancellable_; }
    /// In the steps: until the end, or until endLoop() has been called.
    void runLoop() { g_main_loop_run(loop_); }

    // Any thread; in the loop, in the order of the calls, once it runs.
    void perform(std::function<void()> step);
    void endLoop() {
        perform([this] { g_main_loop_quit(loop_); });
    }

  private:
    void run();

    std::function<void()> steps_;
    GCancellable* const cancellable_ = g_cancellable_new();
    GMainContext* const context_ = g_main_context_new();
    GMainLoop* const loop_ = g_main_loop_new(context_, FALSE);
    GThread* thread_ = nullptr;
};

}  // namespace kx
