// SPDX-License-Identifier: MIT

#include <cmath>
#include <limits>
#include <thread>

#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Platform/Views/ViewDescription.h>
#include <KXFoundation/Testing/CapturedLog.h>

#include "ViewFixture.h"

namespace kx {
namespace {

using ::testing::HasSubstr;

/// root 0,0 200x100
///   left 10,10 80x60
///     inner 20,20 100x100 (larger than its superview)
///   right 70,30 80x60 (over the right part of left)
struct ViewPlaces : ::testing::Test {
    ViewPlaces() {
        root->setIdentifier("root");
        left->setIdentifier("left");
        inner->setIdentifier("inner");
        right->setIdentifier("right");
        root->addSubview(left);
        root->addSubview(right);
        left->addSubview(inner);
    }
    std::string hit(NSPoint point) const {
        const auto found = root->hitTest(point);
        return found ? found->identifier() : "none";
    }
    std::shared_ptr<NSView> root = make<NSView>(NSRect(0, 0, 200, 100));
    std::shared_ptr<NSView> left = make<NSView>(NSRect(10, 10, 80, 60));
    std::shared_ptr<NSView> inner = make<NSView>(NSRect(20, 20, 100, 100));
    std::shared_ptr<NSView> right = make<NSView>(NSRect(70, 30, 80, 60));
};

TEST_F(ViewPlaces, HitTest) {
    const std::pair<NSPoint, std::string> rows[] = {
        {{0, 0}, "root"},
        {{200, 50}, "none"},
        {{-1, 50}, "none"},
        {{10, 10}, "left"},
        {{9.9, 10}, "root"},
        {{35, 35}, "inner"},
        {{75, 35}, "right"},  // in front of inner
        {{95, 95}, "root"},   // inner's part outside left is not hit
        {{90, 20}, "root"},   // a right edge does not belong
        {{std::nan(""), 20}, "none"},
    };
    for (const auto& [point, want] : rows) EXPECT_EQ(hit(point), want) << point.x << "," << point.y;
}

TEST_F(ViewPlaces, WhatIsNotSeenIsNotHit) {
    right->setHidden(true);
    EXPECT_EQ(hit({75, 35}), "inner");
    left->setAlphaValue(0);
    EXPECT_EQ(hit({75, 35}), "root");
    left->setAlphaValue(0.01);
    EXPECT_EQ(hit({75, 35}), "inner");
}

TEST_F(ViewPlaces, Conversion) {
    const NSPoint point{3, 4};
    const std::tuple<const NSView*, const NSView*, NSPoint> rows[] = {
        {inner.get(), inner.get(), {3, 4}},    {inner.get(), left.get(), {23, 24}},
        {inner.get(), root.get(), {33, 34}},   {inner.get(), nullptr, {33, 34}},
        {inner.get(), right.get(), {-37, 4}},  {right.get(), inner.get(), {43, 4}},
        {root.get(), inner.get(), {-27, -26}},
    };
    for (const auto& [from, to, want] : rows) {
        const std::string row = from->identifier() + " to " + (to ? to->identifier() : "window");
        EXPECT_EQ(from->convertPointToView(point, to), want) << row;
        if (to) {
            EXPECT_EQ(to->convertPointFromView(point, from), want) << row;
        }
        EXPECT_EQ(from->convertPointFromView(want, to), point) << row;
    }
}

TEST(NSView, FrameTakesUsableNumbersOnly) {
    constexpr double kInfinity = std::numeric_limits<double>::infinity();
    const double nan = std::nan("");
    const std::pair<NSRect, NSRect> rows[] = {
        {{1.5, -2, 3, 4}, {1.5, -2, 3, 4}},
        {{nan, kInfinity, 3, 4}, {0, 0, 3, 4}},
        {{1, 2, nan, -kInfinity}, {1, 2, 0, 0}},
        {{1, 2, -3, 4}, {1, 2, 0, 4}},
    };
    for (const auto& [given, want] : rows) {
        const auto view = make<NSView>(given);
        EXPECT_EQ(view->frame(), want);
        view->setFrame({9, 9, 9, 9});
        view->setFrame(given);
        EXPECT_EQ(view->frame(), want);
    }
}

TEST_F(ViewPlaces, Description) {
    right->setHidden(true);
    EXPECT_EQ(describeTree(*root),
              "<NSView 0,0 200x100>\n  <NSView 10,10 80x60>\n    <NSView 20,20 100x100>\n"
              "  <NSView 70,30 80x60 hidden>\n");
}

TEST_F(ViewPlaces, LayoutDirectionComesFromAbove) {
    using enum NSUserInterfaceLayoutDirection;
    EXPECT_EQ(inner->userInterfaceLayoutDirection(), LeftToRight);
    root->setUserInterfaceLayoutDirection(RightToLeft);
    EXPECT_EQ(inner->userInterfaceLayoutDirection(), RightToLeft);
    left->setUserInterfaceLayoutDirection(LeftToRight);
    EXPECT_EQ(inner->userInterfaceLayoutDirection(), LeftToRight);
    left->setUserInterfaceLayoutDirection(std::nullopt);
    EXPECT_EQ(inner->userInterfaceLayoutDirection(), RightToLeft);
}

TEST_F(ViewPlaces, AnotherThreadChangesNothing) {
    const testing::OffscreenWindow shown({100, 100});
    const testing::CapturedLog log;
    const testing::LenientMode lenient;
    std::thread([&] {
        root->setFrame({1, 2, 3, 4});
        root->setHidden(true);
        right->addSubview(inner);
        left->removeFromSuperview();
    }).join();
    EXPECT_THAT(log.lines(), ::testing::SizeIs(4));
    EXPECT_THAT(log.lines(), ::testing::Each(HasSubstr("another thread")));
    EXPECT_EQ(root->frame(), NSRect(0, 0, 200, 100));
    EXPECT_FALSE(root->isHidden());
    EXPECT_EQ(inner->superview(), left);
    EXPECT_EQ(left->superview(), root);
}

TEST_F(ViewPlaces, BeforeThereIsAnApplicationAnyThreadMayBuildViews) {
    const ScopedProcessState fresh;
    std::thread([&] { right->addSubview(inner); }).join();
    EXPECT_EQ(inner->superview(), right);
}

}  // namespace
}  // namespace kx
