// SPDX-License-Identifier: MIT

#include <cmath>
#include <numbers>

#include <KXFoundation/Platform/Views/CABasicAnimation.h>
#include <KXFoundation/Testing/ManualClock.h>

#include "ViewFixture.h"

namespace kx {
namespace {

using testing::filled;
using testing::kBlue;
using testing::kRed;

struct Layer : ::testing::Test {
    Layer() {
        shown.content().addSubview(view);
        ground = shown.pixel(1, 1);
    }
    /// Frame by frame, as a loop does.
    void pass(double seconds) {
        for (long frame = std::lround(seconds * 60); frame >= 0; --frame) {
            shown.window->displayIfNeeded();
            clock->advance(std::chrono::nanoseconds(1'000'000'000 / 60));
        }
        shown.window->displayIfNeeded();
    }
    void animate(std::string_view keyPath, CABasicAnimation::AnimatedValue to, float count) {
        const auto animation = CABasicAnimation::animationWithKeyPath(keyPath);
        animation->setToValue(to);
        animation->setDuration(1);
        animation->setRepeatCount(count);
        view->layer()->addAnimation(animation);
    }

    std::shared_ptr<testing::ManualClock> clock = std::make_shared<testing::ManualClock>();
    ScopedPort<Clock> clockScope{clock};
    testing::OffscreenWindow shown{{100, 100}};
    std::shared_ptr<NSView> view = filled({30, 40, 40, 20}, kRed);
    std::uint32_t ground = 0;
};

TEST_F(Layer, BackgroundCornersAndClipping) {
    EXPECT_EQ(shown.pixel(30, 40), kRed);
    view->layer()->setCornerRadius(8);
    EXPECT_EQ(shown.pixel(30, 40), ground);
    EXPECT_EQ(shown.pixel(50, 50), kRed);
    view->addSubview(filled({-10, -10, 60, 40}, kBlue));
    EXPECT_EQ(shown.pixel(22, 32), kBlue);
    view->layer()->setMasksToBounds(true);
    EXPECT_TRUE(view->clipsToBounds());
    EXPECT_EQ(shown.pixel(22, 32), ground);
    EXPECT_EQ(shown.pixel(30, 40), ground) << "cut at the rounded corner";
    EXPECT_EQ(shown.pixel(50, 50), kBlue);
    view->layer()->setOpacity(0);
    EXPECT_EQ(shown.pixel(50, 50), ground);
}

TEST_F(Layer, TheShadowReachesBeyondAViewThatClips) {
    const auto before = shown.pixels();
    view->setClipsToBounds(true);
    view->layer()->setShadowOpacity(1);
    view->layer()->setShadowRadius(4);
    view->layer()->setShadowOffset({0, 0});
    EXPECT_NE(shown.pixel(28, 50), ground);
    EXPECT_EQ(shown.pixel(50, 50), kRed);
    EXPECT_EQ(shown.pixel(50, 80), ground) << "faded out";
    const auto whole = shown.pixels();
    view->setFrame({31, 40, 40, 20});
    static_cast<void>(shown.pixels());
    view->setFrame({30, 40, 40, 20});
    EXPECT_EQ(shown.pixels(), whole) << "moved away and back, it leaves no trace";
    view->layer()->setShadowOpacity(0);
    EXPECT_EQ(shown.pixels(), before);
}

TEST_F(Layer, AnimationsTurnMoveAndFadeAndEnd) {
    const auto still = shown.pixels();
    animate("transform.rotation.z", std::numbers::pi, 1);
    pass(0.5);
    EXPECT_EQ(shown.pixel(50, 35), kRed) << "upright now";
    EXPECT_EQ(shown.pixel(35, 50), ground);
    pass(0.6);
    EXPECT_EQ(shown.pixels(), still);
    EXPECT_EQ(view->layer()->animationCount(), 0U);
    animate("position", NSPoint{70, 50}, 1);
    pass(0.5);
    EXPECT_EQ(shown.pixel(32, 50), ground);
    EXPECT_EQ(shown.pixel(75, 50), kRed);
    view->layer()->removeAllAnimations();
    EXPECT_EQ(shown.pixels(), still);
    animate("opacity", 0.0, std::numeric_limits<float>::infinity());
    pass(2.5);
    EXPECT_NE(shown.pixel(50, 50), kRed);
    animate("position", 3.0, 1);
    animate("opacity", NSPoint{1, 1}, 1);
    animate("colour", 1.0, 1);
    animate("transform.rotation.z", std::nan(""), 1);
    view->layer()->removeAllAnimations();
    EXPECT_EQ(shown.pixels(), still);
    pass(1);
    EXPECT_EQ(clock->pendingTimers(), 0U);
}

}  // namespace
}  // namespace kx
