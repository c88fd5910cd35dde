// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Localization/LiveLanguage.h>
#include <KXFoundation/Testing/OffscreenWindow.h>
#include <KXFoundation/Testing/PictureComparison.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

#include "Harbour.h"

using namespace kx;
using namespace kx::testing;

namespace {

struct HarbourTest : ::testing::Test {
    ScopedPlatform platform{HARBOUR_FOLDER "Resources"};
    std::unique_ptr<Harbour> harbour;
    OffscreenWindow shown{[this] {
        harbour = std::make_unique<Harbour>();
        return harbour->window;
    }};
};

TEST_F(HarbourTest, AClickTurnsTheWindowRoundWhileItIsShown) {
    shown.click(*harbour->unload);
    EXPECT_EQ(harbour->crates->stringValue(), "Crates ashore: 25");
    EXPECT_EQ(harbour->crates->frame().origin.x, 20);

    shown.click(*harbour->language);
    const auto picture = shown.picture();  // the next frame
    EXPECT_EQ(harbour->window->title(), "الميناء");
    EXPECT_EQ(harbour->crates->stringValue(), "الصناديق على الرصيف: 25");
    EXPECT_EQ(harbour->crates->frame().maxX(), 260);
    EXPECT_EQ(harbour->crates->alignment(), NSTextAlignment::Right);
}

TEST_F(HarbourTest, NothingIsForgotten) {
    for (const auto& each : LiveLanguage::unbound(harbour->window)) ADD_FAILURE() << each.describe();
}

}  // namespace
