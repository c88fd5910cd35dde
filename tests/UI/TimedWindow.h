#pragma once

#include <chrono>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Runtime/ManualClock.h>

#include "Platform/Views/ViewFixture.h"

namespace kx::testing {

/// A key window of 640 x 480 points, and time that moves only when it is told.
struct TimedWindow : ::testing::Test {
    void pass(double seconds) {
        clock->advance(std::chrono::nanoseconds(static_cast<std::int64_t>(seconds * 1e9)));
    }
    [[nodiscard]] std::size_t children() const { return shown.window->childWindows().size(); }

    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
    ScopedPort<Clock> clockScope{clock};
    OffscreenWindow shown{{640, 480}};
};

}  // namespace kx::testing
