// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>

namespace kx::testing {

/// Puts one seeded, single-threaded scheduler under queues, clock and files for a scope. Asynchronous blocks
/// and timers no longer run by themselves: run() runs them all, in an order that the seed chooses, and a wait
/// (sync, a semaphore, an operation queue) is a point where other work may come between. The same seed gives
/// the same order, so that a failing interleaving fails for good:
///
///     for (std::uint64_t seed = 0; seed < 500; ++seed) {
///         SimulatedWorld world(seed);
///         ... start the work ...
///         world.run();
///         ASSERT_EQ(...) << "seed " << seed;
///     }
///
/// Main blocks keep their order and see themselves on the main thread, background ones do not. Time moves
/// only in run(), from deadline to deadline. A block that waits goes on only after those that ran meanwhile
/// have ended or wait no more: orders that need two blocks to wait crosswise are not found. Other threads
/// stay out of the scope.
class KX_EXPORT SimulatedWorld {
  public:
    /// Whether other work may come between the file operations of a block. Only for code that holds no mutex
    /// during them: on the one thread, whoever came between and wanted the same mutex would wait for ever.
    /// While a file is locked nothing comes between in either case.
    enum class FileWork : std::uint8_t { Whole, Interleaved };

    explicit SimulatedWorld(std::uint64_t seed, FileWork fileWork = FileWork::Whole);
    ~SimulatedWorld();
    SimulatedWorld(const SimulatedWorld&) = delete;
    SimulatedWorld& operator=(const SimulatedWorld&) = delete;

    /// Runs until no block and no timer is left.
    void run();

  private:
    class Scheduler;
    class ScheduledFiles;
    std::shared_ptr<Scheduler> scheduler_;
    ScopedPort<Executor> executor_;
    ScopedPort<Clock> clock_;
    ScopedPort<FileSystem> files_;
};

}  // namespace kx::testing
