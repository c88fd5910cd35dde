// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

#include <KXFoundation/Testing/ManualClock.h>
#include <KXFoundation/Testing/RecordingScreenReader.h>

#include "Platform/Views/ViewFixture.h"

namespace kx::testing {

/// A key window of 640 x 480 points, time that moves only when it is told, and a
/// screen reader's ear.
struct TimedWindow : ::testing::Test {
    void pass(double seconds) {
        clock->advance(std::chrono::nanoseconds(static_cast<std::int64_t>(seconds * 1e9)));
    }
    [[nodiscard]] std::size_t children() const { return shown.window->childWindows().size(); }

    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
    ScopedPort<Clock> clockScope{clock};
    std::shared_ptr<RecordingScreenReader> reader = std::make_shared<RecordingScreenReader>();
    ScopedPort<ScreenReader> readerScope{reader};
    OffscreenWindow shown{{640, 480}};
};

}  // namespace kx::testing
