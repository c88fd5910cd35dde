// SPDX-License-Identifier: MIT

#include <algorithm>
#include <limits>

#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/UI/KXConfirmButton.h>
#include <KXFoundation/UI/KXUIUtils.h>
#include <KXFoundation/UI/NSButton_Custom.h>

#include "UI/TimedWindow.h"

namespace kx {
namespace {

using HitArea = testing::TimedWindow;

TEST_F(HitArea, ClicksAroundAnEnlargedButtonAreItsOwn) {
    const auto button = make<NSButton>(NSRect(100, 50, 80, 30));
    shown.content().addSubview(button);
    int clicks = 0;
    button->setAction([&](NSControl&) { ++clicks; });
    const auto isHit = [&](NSPoint point) {
        const int before = clicks;
        shown.surface().click(point);
        return clicks > before;
    };
    EXPECT_EQ(NSButton_Custom::enlargedRect(button), NSRect(0, 0, 80, 30));
    EXPECT_FALSE(isHit({99, 60}));
    NSButton_Custom::setEnlargeEdge(button, 10);
    EXPECT_EQ(NSButton_Custom::enlargedRect(button), NSRect(-10, -10, 100, 50));
    NSButton_Custom::setEnlargeEdgeWithTop(button, 1, 20, 30, 0.1);
    const double narrow = static_cast<double>(0.1F);
    EXPECT_EQ(NSButton_Custom::enlargedRect(button), NSRect(-20, -1, 100 + narrow, 61));
    const std::pair<NSPoint, bool> rows[] = {{{120, 60}, true},    {{80, 49}, true},     {{79.9, 60}, false},
                                             {{120, 48.9}, false}, {{120, 109.9}, true}, {{120, 110}, false},
                                             {{10, 10}, false},    {{180.05, 60}, true}};
    for (const auto& [point, hit] : rows) EXPECT_EQ(isHit(point), hit) << point.x << ", " << point.y;
    button->setHidden(true);
    EXPECT_FALSE(isHit({85, 60}));
    EXPECT_EQ(button->hitTest({85, 60}), button) << "the area is the button's, seen or not";
    button->setHidden(false);
    NSButton_Custom::setEnlargeEdge(button, std::numeric_limits<double>::quiet_NaN());
    EXPECT_TRUE(isHit({120, 60}));
    EXPECT_FALSE(isHit({85, 60}));
}

TEST_F(HitArea, AConfirmButtonIsSetUpFromFrameAndArchive) {
    const auto plain = make<KXConfirmButton>(NSRect(0, 0, 80, 30));
    plain->setWantsLayer(true);
    NSCoder encoder;
    plain->encodeWithCoder(encoder);
    NSCoder decoder(encoder.archive());
    const auto archived = make<KXConfirmButton>(decoder);
    EXPECT_EQ(archived->layer()->cornerRadius(), 8);
    for (const auto& button : {plain, archived}) {
        EXPECT_EQ(button->style(), KXConfirmButton::Style::blue);
        EXPECT_EQ(button->font()->pointSize(), 17);
    }
}

TEST_F(HitArea, ScreenLengthsAreThoseOfTheMainScreen) {
    for (const NSSize screen : {NSSize{1440, 900}, {900, 1440}, {700, 700}}) {
        const ScopedPort<WindowSystem> scope(std::make_shared<OffscreenWindowSystem>(1, screen));
        EXPECT_EQ(KXUIUtils::maxScreenLength(), std::max(screen.width, screen.height));
        EXPECT_EQ(KXUIUtils::minScreenLength(), std::min(screen.width, screen.height));
    }
}

}  // namespace
}  // namespace kx
