// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Views/NSButton.h>

#include "ViewFixture.h"

namespace kx {
namespace {

struct WindowKeys : ::testing::Test {
    WindowKeys() {
        for (const char* title : {"a", "b", "c"}) {
            const auto button = make<NSButton>(NSRect(10, 10 + 30 * double(buttons.size()), 50, 20));
            button->setTitle(title);
            button->setAction([this](NSControl& sender) { told += static_cast<NSButton&>(sender).title(); });
            shown.content().addSubview(button);
            buttons.push_back(button);
        }
    }
    void key(NSEventType type, std::string_view characters, auto flags, bool isARepeat = false) {
        shown.surface().send(NSEvent{.type = type,
                                     .modifierFlags = flags,
                                     .isARepeat = isARepeat,
                                     .characters = std::string(characters)});
    }
    void press(std::string_view characters, NSEventModifierFlags flags = NSEventModifierFlags::None) {
        shown.press(characters, flags);
    }
    std::string focused() const {
        const auto button = std::dynamic_pointer_cast<NSButton>(shown.window->firstResponder());
        return button ? button->title() : "none";
    }

    testing::OffscreenWindow shown{{100, 100}};
    std::vector<std::shared_ptr<NSButton>> buttons;
    std::string told;
};

TEST_F(WindowKeys, TabGoesRoundTheViewsThatTakeKeys) {
    EXPECT_EQ(focused(), "none");
    for (const char* want : {"a", "b", "c", "a"}) {
        press("\t");
        EXPECT_EQ(focused(), want);
    }
    press("\t", NSEventModifierFlags::Shift);
    EXPECT_EQ(focused(), "c");
    buttons[1]->setEnabled(false);
    buttons[0]->setHidden(true);
    press("\t");
    EXPECT_EQ(focused(), "c") << "the only one left";
    buttons[2]->setHidden(true);
    EXPECT_EQ(focused(), "none") << "nobody sees it";
    buttons[2]->setHidden(false);
    EXPECT_EQ(focused(), "c");
    buttons[2]->removeFromSuperview();
    EXPECT_EQ(focused(), "none") << "it has left the window";
}

TEST_F(WindowKeys, SpaceAndEnterPressTheButtonThatHasTheKeysWhenLetGo) {
    shown.surface().click({20, 50});
    EXPECT_EQ(std::exchange(told, ""), "b");
    EXPECT_FALSE(shown.window->showsFocus()) << "the mouse needs no mark";
    for (const char* characters : {" ", "\r"}) {
        for (const bool isARepeat : {false, true, true})
            key(NSEventType::KeyDown, characters, NSEventModifierFlags::None, isARepeat);
        EXPECT_TRUE(buttons[1]->isHighlighted());
        EXPECT_EQ(told, "");
        key(NSEventType::KeyUp, characters, NSEventModifierFlags::None);
        EXPECT_EQ(std::exchange(told, ""), "b") << "once, however long it was held";
        EXPECT_FALSE(buttons[1]->isHighlighted());
    }
    key(NSEventType::KeyDown, " ", NSEventModifierFlags::None);
    press("\t");
    key(NSEventType::KeyUp, " ", NSEventModifierFlags::None);
    EXPECT_EQ(told, "") << "the keys went elsewhere meanwhile";
    EXPECT_TRUE(shown.window->showsFocus());
}

TEST_F(WindowKeys, EnterPressesTheDefaultButtonFromAnywhereElse) {
    buttons[2]->setDefaultButton(true);
    press("\r");
    EXPECT_EQ(std::exchange(told, ""), "c");
    key(NSEventType::KeyDown, "\r", NSEventModifierFlags::None, true);
    EXPECT_EQ(told, "") << "a held key";
    buttons[2]->setEnabled(false);
    press("\r");
    EXPECT_EQ(told, "");
}

TEST_F(WindowKeys, ShowsWhichButtonHasThemAndRedrawsThatAlone) {
    shown.window->displayIfNeeded();
    press("\t");
    shown.window->displayIfNeeded();
    EXPECT_EQ(shown.surface().lastChanged(), (std::vector<PixelRect>{{10, 10, 50, 20}}));
}

}  // namespace
}  // namespace kx
