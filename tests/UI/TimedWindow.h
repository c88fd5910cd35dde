#pragma once

#include <chrono>
#include <string>
#include <vector>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Services/ScreenReader.h>
#include <KXFoundation/Testing/ManualClock.h>

#include "Platform/Views/ViewFixture.h"

namespace kx::testing {

struct HeardTexts final : ScreenReader {
    void announce(std::string_view text) override { heard.emplace_back(text); }
    std::vector<std::string> heard;
};

/// A key window of 640 x 480 points, time that moves only when it is told, and a
/// screen reader's ear.
struct TimedWindow : ::testing::Test {
    void pass(double seconds) {
        clock->advance(std::chrono::nanoseconds(static_cast<std::int64_t>(seconds * 1e9)));
    }
    [[nodiscard]] std::size_t children() const { return shown.window->childWindows().size(); }

    std::shared_ptr<ManualClock> clock = std::make_shared<ManualClock>();
    ScopedPort<Clock> clockScope{clock};
    std::shared_ptr<HeardTexts> reader = std::make_shared<HeardTexts>();
    ScopedPort<ScreenReader> readerScope{reader};
    OffscreenWindow shown{{640, 480}};
};

}  // namespace kx::testing
