// SPDX-License-Identifier: MIT

// StressTests [--only NAME] [--seeds FROM-TO]: what several threads use at once, in orders that a seed
// chooses. Says which seed failed, and that seed alone fails again.
#include "Stress.h"

#include <csignal>
#include <cstdio>
#include <cstdlib>
#include <filesystem>
#include <string_view>

#include <unistd.h>

#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Runtime/MainThread.h>
#include <KXFoundation/Testing/FaultyFileSystem.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

namespace kx::testing {

void Stress::later(std::function<void()> step) {
    auto counted = [this, step = std::move(step)] {
        ++steps_;
        step();
    };
    switch (below(4)) {
        case 0:
            return DispatchQueue::main().async(std::move(counted));
        case 1:
            return DispatchQueue::shared().async(std::move(counted));
        case 2:
            return serial_->async(std::move(counted));
        default:
            return DispatchQueue::shared().after(std::chrono::milliseconds(below(5)), std::move(counted));
    }
}

void Stress::pause() {
    if (!isMainThread()) DispatchQueue::main().sync([] {});
}

std::string Stress::folder() {
    std::filesystem::remove_all(directory_ / "folder");
    return directory_ / "folder";
}

namespace {

constexpr unsigned kHangs = 60;  // seconds
const char* scenarioName = "";
std::uint64_t seedNow = 0;

void sayHang(int) {
    std::fprintf(stderr, "%s, seed %llu: does not end\n", scenarioName,
                 static_cast<unsigned long long>(seedNow));
    std::_Exit(1);
}

/// Prints a row of the table; false if a seed failed.
bool runScenario(const StressScenario& scenario, std::uint64_t from, std::uint64_t to) {
    const ScopedPlatform platform;
    const ScopedPort<FileSystem> files(std::make_shared<FaultyFileSystem>());  // syncs cost nothing
    std::uint64_t steps = 0, failures = 0;
    scenarioName = scenario.name;
    for (seedNow = from; seedNow <= to; ++seedNow) {
        ::alarm(kHangs);
        Stress stress(seedNow, platform.directory());
        scenario.run(stress);
        steps += stress.steps();
        if (stress.failure().empty() || ++failures > 5) continue;
        std::fprintf(stderr, "%s, seed %llu: %s\n", scenario.name, static_cast<unsigned long long>(seedNow),
                     stress.failure().c_str());
    }
    std::printf("| %s | %llu | %llu | %llu |\n", scenario.name,
                static_cast<unsigned long long>(to - from + 1), static_cast<unsigned long long>(steps),
                static_cast<unsigned long long>(failures));
    std::fflush(stdout);
    return failures == 0;
}

}  // namespace
}  // namespace kx::testing

int main(int argc, char** argv) {
    using namespace kx::testing;
    std::string_view only;
    std::uint64_t from = 0, to = 99;
    for (int i = 1; i + 1 < argc; i += 2) {
        char* end = argv[i + 1];
        if (argv[i] == std::string_view("--only")) only = end;
        if (argv[i] != std::string_view("--seeds")) continue;
        from = to = std::strtoull(end, &end, 10);
        if (*end == '-') to = std::strtoull(end + 1, nullptr, 10);
    }
    std::signal(SIGALRM, sayHang);
    kx::setStrictMode(true);
    bool passed = true, ran = false;
    std::puts("| what | seeds | steps | failures |\n|---|---:|---:|---:|");
    for (const auto* scenario : {&kListScenario, &kMemoryCacheScenario, &kDiskCacheScenario, &kLoadScenario,
                                 &kNotificationScenario, &kRequestScenario, &kGIFScenario, &kOnceScenario}) {
        if (!only.empty() && only != scenario->name) continue;
        ran = true;
        passed = runScenario(*scenario, from, to) && passed;
    }
    return passed && ran ? 0 : 1;
}
