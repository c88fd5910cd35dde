// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <deque>

#include <KXFoundation/Platform/Runtime/Executor.h>

namespace kx {

/// Background jobs run on as many threads as there are processors, four at least; a thread that waits for
/// other work is made up for by another one, up to 64. Main jobs run in the main thread's event loop.
///
/// When the process exits (or stop() is called), no job is accepted or started any more, and the threads are
/// waited for, but for those that wait for work which will never come.
class KX_EXPORT ThreadExecutor final : public Executor {
  public:
    ThreadExecutor();
    ~ThreadExecutor() override { stop(); }

    void runOnMain(Job job) override;
    void runInBackground(Job job) override;
    void wait(Mutex& mutex, WaitPoint& point) KX_REQUIRES(mutex) override;
    void wake(WaitPoint& point) override;
    void drain() override;
    bool hasEnded() const override;

    void stop();

  private:
    struct State;
    std::shared_ptr<State> state_;  // threads share it
};

}  // namespace kx
