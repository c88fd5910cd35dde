// SPDX-License-Identifier: MIT

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
    void key(NSEventType type, const std::string& characters, bool isARepeat = false) {
        shown.surface().send(NSEvent{.type = type, .isARepeat = isARepeat, .characters = characters});
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
        shown.press("\t");
        EXPECT_EQ(focused(), want);
    }
    shown.press("\t", NSEventModifierFlags::Shift);
    EXPECT_EQ(focused(), "c");
    buttons[1]->setEnabled(false);
    buttons[0]->setHidden(true);
    shown.press("\t");
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
        for (const bool isARepeat : {false, true, true}) key(NSEventType::KeyDown, characters, isARepeat);
        EXPECT_TRUE(buttons[1]->isHighlighted());
        EXPECT_EQ(told, "");
        key(NSEventType::KeyUp, characters);
        EXPECT_EQ(std::exchange(told, ""), "b") << "once, however long it was held";
        EXPECT_FALSE(buttons[1]->isHighlighted());
    }
    key(NSEventType::KeyDown, " ");
    shown.press("\t");
    key(NSEventType::KeyUp, " ");
    EXPECT_EQ(told, "") << "the keys went elsewhere meanwhile";
    EXPECT_TRUE(shown.window->showsFocus());
}

TEST_F(WindowKeys, EnterPressesTheDefaultButtonFromAnywhereElse) {
    buttons[2]->setDefaultButton(true);
    shown.press("\r");
    EXPECT_EQ(std::exchange(told, ""), "c");
    key(NSEventType::KeyDown, "\r", true);
    EXPECT_EQ(told, "") << "a held key";
    buttons[2]->setEnabled(false);
    shown.press("\r");
    EXPECT_EQ(told, "");
}

TEST_F(WindowKeys, ShowsWhichButtonHasThemAndRedrawsThatAlone) {
    shown.window->displayIfNeeded();
    shown.press("\t");
    shown.window->displayIfNeeded();
    EXPECT_EQ(shown.surface().lastChanged(), (std::vector<PixelRect>{{10, 10, 50, 20}}));
}

}  // namespace
}  // namespace kx
