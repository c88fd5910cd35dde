// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/NSButton.h>

#include "ViewFixture.h"

namespace kx {
namespace {

struct Button : ::testing::Test {
    Button() {
        button->setAction([this](NSControl&) { ++clicks; });
        shown.content().addSubview(button);
    }

    testing::OffscreenWindow shown{{100, 100}};
    std::shared_ptr<NSButton> button = make<NSButton>(NSRect(10, 10, 50, 20));
    int clicks = 0;
};

TEST_F(Button, SendsItsActionWhenTheMouseIsReleasedOverIt) {
    using enum NSEventType;
    const std::tuple<std::string, NSPoint, NSPoint, NSPoint, bool, int> rows[] = {
        {"click", {20, 20}, {21, 20}, {22, 20}, true, 1},
        {"slips off", {20, 20}, {80, 80}, {80, 80}, false, 0},
        {"comes back", {20, 20}, {80, 80}, {20, 20}, false, 1},
        {"begins elsewhere", {80, 80}, {20, 20}, {20, 20}, false, 0},
    };
    for (const auto& [what, down, dragged, up, pressed, want] : rows) {
        clicks = 0;
        shown.mouse(MouseDown, down);
        shown.mouse(MouseDragged, dragged);
        EXPECT_EQ(button->isHighlighted(), pressed) << what;
        shown.mouse(MouseUp, up);
        EXPECT_EQ(clicks, want) << what;
        EXPECT_FALSE(button->isHighlighted()) << what;
    }
}

TEST_F(Button, MayGoAwayInItsOwnAction) {
    const std::weak_ptr<NSButton> watched = button;
    button->setAction([](NSControl& sender) {
        sender.setAction(nullptr);
        sender.removeFromSuperview();
    });
    button = nullptr;
    shown.surface().click({20, 20});
    EXPECT_TRUE(watched.expired());
}

TEST_F(Button, OffOrRemovedItSendsNothing) {
    button->setEnabled(false);
    shown.surface().click({20, 20});
    button->performClick();
    button->setEnabled(true);
    shown.mouse(NSEventType::MouseDown, {20, 20});
    button->removeFromSuperview();
    shown.mouse(NSEventType::MouseUp, {20, 20});
    EXPECT_EQ(clicks, 0);
    EXPECT_FALSE(button->isHighlighted());
}

}  // namespace
}  // namespace kx
