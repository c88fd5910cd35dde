// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <random>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Testing/SimulatedWorld.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx::testing {

/// One run of a scenario: a process as if just started, in a world whose every choice comes from the seed.
class Stress {
  public:
    Stress(std::uint64_t seed, const TemporaryDirectory& directory)
        : directory_(directory), random_(seed), world_(seed) {}

    /// Any number below `count`.
    std::size_t below(std::size_t count) { return random_() % count; }
    bool isOneIn(std::size_t count) { return below(count) == 0; }

    /// Puts the step on some queue, now or in some milliseconds.
    void later(std::function<void()> step);
    /// Lets others come between, if the calling step may wait.
    static void pause();
    /// Runs until nothing is left to do.
    void run() { world_.run(); }

    /// Notes what does not hold; the first such is kept.
    void require(bool holds, std::string_view what) {
        if (!holds && failure_.empty()) failure_ = what;
    }

    [[nodiscard]] const std::string& failure() const noexcept { return failure_; }
    [[nodiscard]] std::uint64_t steps() const noexcept { return steps_; }
    /// A folder that is empty at the first call.
    [[nodiscard]] std::string folder();
    [[nodiscard]] const TemporaryDirectory& directory() const noexcept { return directory_; }

  private:
    const TemporaryDirectory& directory_;
    std::mt19937_64 random_;
    ScopedProcessState state_;
    SimulatedWorld world_;
    std::shared_ptr<DispatchQueue> serial_ = DispatchQueue::serial("stress");
    std::string failure_;
    std::uint64_t steps_ = 0;
};

struct StressScenario {
    const char* name;
    void (*run)(Stress& stress);
};

/// Of what is kept for the caller: list, caches.
extern const StressScenario kListScenario, kMemoryCacheScenario, kDiskCacheScenario, kLoadScenario;
/// Of what calls back: notification centre, requests, GIF queue, run-once.
extern const StressScenario kNotificationScenario, kRequestScenario, kGIFScenario, kOnceScenario;

}  // namespace kx::testing
