// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Localization/LiveLanguage.h>
#include <KXFoundation/Testing/OffscreenWindow.h>
#include <KXFoundation/Testing/PictureComparison.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

#include "CrateCounter.h"

using namespace kx;
using namespace kx::testing;

namespace {

struct CrateCounterTest : ::testing::Test {
    ScopedPlatform platform{CRATES_FOLDER "Resources"};
    std::unique_ptr<CrateCounter> counter;
    OffscreenWindow shown{[this] {
        counter = std::make_unique<CrateCounter>();
        return counter->window;
    }};
};

TEST_F(CrateCounterTest, AClickTurnsTheWindowRoundWhileItIsShown) {
    shown.click(*counter->unload);
    EXPECT_EQ(counter->crates->stringValue(), "Crates ashore: 25");
    EXPECT_EQ(counter->crates->frame().origin.x, 20);

    shown.click(*counter->language);
    const auto picture = shown.picture();  // the next frame
    EXPECT_EQ(counter->window->title(), "الميناء");
    EXPECT_EQ(counter->crates->stringValue(), "الصناديق على الرصيف: 25");
    EXPECT_EQ(counter->crates->frame().maxX(), 260);
    EXPECT_EQ(counter->crates->alignment(), NSTextAlignment::Right);
}

TEST_F(CrateCounterTest, NothingIsForgotten) {
    for (const auto& each : LiveLanguage::unbound(counter->window)) ADD_FAILURE() << each.describe();
}

}  // namespace
