// SPDX-License-Identifier: MIT

#include <cstdlib>

#include <gtest/gtest.h>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Testing/OffscreenWindow.h>
#include <KXFoundation/Testing/PictureComparison.h>
#include <KXFoundation/Testing/ScopedFonts.h>
#include <KXFoundation/Testing/ScopedPlatform.h>

#include "Greeting.h"

using namespace kx;
using namespace kx::testing;

namespace {

/// The application as if just started, by a person who prefers English.
struct GreetingTest : ::testing::Test {
    ScopedPlatform platform{GREETING_FOLDER "Resources"};
    ScopedFonts fonts{{"/usr/share/fonts/truetype/dejavu/DejaVuSans.ttf"}};
    std::unique_ptr<Greeting> greeting;
    OffscreenWindow shown{[this] {
        greeting = std::make_unique<Greeting>();
        return greeting->window;
    }};
};

/// RENEW_PICTURES=1 in the environment keeps what is drawn now.
void expectPicture(const NSBitmapImageRep& picture, const std::string& name) {
    const std::string path = GREETING_FOLDER "pictures/" + name;
    if (std::getenv("RENEW_PICTURES")) ASSERT_TRUE(writePicture(picture, path));
    const auto difference = compareWithFile(picture, path, {.channel = 12});
    ASSERT_TRUE(difference) << difference.error().message();
    EXPECT_TRUE(difference->accepted) << difference->describe();
}

TEST_F(GreetingTest, AClickGreetsInArabicAndBackInEnglish) {
    EXPECT_EQ(greeting->label->stringValue(), "Good morning");
    shown.click(*greeting->button);
    EXPECT_EQ(greeting->label->stringValue(), "صباح الخير");
    EXPECT_EQ(greeting->label->alignment(), NSTextAlignment::Right);
    shown.press("\t");
    shown.press(" ");
    EXPECT_EQ(greeting->label->stringValue(), "Good morning");
}

TEST_F(GreetingTest, LooksAsItDid) {
    expectPicture(*shown.picture(), "english.png");
    shown.click(*greeting->button);
    expectPicture(*shown.picture(), "arabic.png");
}

TEST(Greeting, KeepsItsLanguageOverARestart) {
    ScopedPlatform platform(GREETING_FOLDER "Resources");
    KXLocalizationUtils::setSelectLanguage("ar");
    platform.restart();
    EXPECT_EQ(KXLocalizationUtils::localizedStringForKey("greeting"), "صباح الخير");
}

}  // namespace
