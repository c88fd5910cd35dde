// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Testing/CapturedLog.h>

#include "ViewFixture.h"

namespace kx {
namespace {

using ::testing::ElementsAre;
using testing::filled;
using testing::kBlue;
using testing::kRed;

struct ChildWindow : ::testing::Test {
    testing::OffscreenWindow shown{{100, 100}};
    std::shared_ptr<NSWindow> child = make<NSWindow>();
};

TEST_F(ChildWindow, IsDrawnInsideItsParentAndFollowsIt) {
    const std::uint32_t under = shown.pixel(50, 50);
    shown.window->addChildWindow(child, NSWindowOrderingMode::Above);
    EXPECT_EQ(child->frame(), shown.window->frame());
    EXPECT_EQ(shown.pixel(50, 50), under) << "its background is clear";
    child->contentView()->addSubview(filled({40, 40, 20, 20}, kRed));
    EXPECT_EQ(shown.pixel(50, 50), kRed);
    EXPECT_THAT(shown.surface().lastChanged(), ElementsAre(PixelRect{40, 40, 20, 20}));
    const auto below = make<NSWindow>(NSRect(45, 45, 30, 30));
    below->setContentView(filled({}, kBlue));
    shown.window->addChildWindow(below, NSWindowOrderingMode::Below);
    EXPECT_EQ(shown.pixel(50, 50), kRed);
    EXPECT_EQ(shown.pixel(70, 70), kBlue);
    below->orderFront();
    EXPECT_EQ(shown.pixel(50, 50), kBlue);
    shown.window->setFrame({10, 0, 120, 80});
    EXPECT_EQ(child->contentView()->frame(), NSRect(0, 0, 120, 80));
    EXPECT_EQ(below->frame(), NSRect(55, 45, 30, 30)) << "it stays where it is in its parent";
    make<NSWindow>()->removeChildWindow(below);
    EXPECT_EQ(below->parentWindow(), nullptr) << "whichever parent it has";
    EXPECT_EQ(shown.pixel(70, 70), under);
    EXPECT_EQ(NSApplication::sharedApplication()->windows().size(), 1U);
}

TEST_F(ChildWindow, TakesClicksWhereItDrawsAndNoKeys) {
    const auto beneath = make<NSButton>(NSRect(0, 0, 100, 100));
    shown.content().addSubview(beneath);
    const auto above = make<NSButton>(NSRect(40, 40, 20, 20));
    child->contentView()->addSubview(above);
    shown.window->addChildWindow(child, NSWindowOrderingMode::Above);
    std::string clicked;
    beneath->setAction([&](NSControl&) { clicked += "beneath,"; });
    above->setAction([&](NSControl&) {
        clicked += "above,";
        child->close();
    });
    shown.window->displayIfNeeded();
    child->makeKeyAndOrderFront();
    EXPECT_TRUE(shown.window->isKeyWindow());
    shown.surface().click({20, 20});
    shown.surface().click({50, 50});
    shown.surface().click({50, 50});
    EXPECT_EQ(clicked, "beneath,above,beneath,");
    EXPECT_FALSE(child->isVisible());
}

TEST_F(ChildWindow, IsNoPartOfItself) {
    shown.window->addChildWindow(child, NSWindowOrderingMode::Above);
    const testing::LenientMode lenient;
    child->addChildWindow(shown.window, NSWindowOrderingMode::Above);
    child->addChildWindow(child, NSWindowOrderingMode::Above);
    EXPECT_TRUE(child->childWindows().empty());
    EXPECT_EQ(shown.window->parentWindow(), nullptr);
    shown.window->close();
    shown.window = nullptr;
    EXPECT_EQ(child->parentWindow(), nullptr);
}

TEST_F(ChildWindow, WindowsOfAHigherLevelStayInFront) {
    const auto floating = make<NSWindow>();
    floating->setLevel(NSFloatingWindowLevel);
    floating->orderFront();
    const auto plain = make<NSWindow>();
    plain->orderFront();
    EXPECT_THAT(NSApplication::sharedApplication()->windows(), ElementsAre(shown.window, plain, floating));
}

}  // namespace
}  // namespace kx
