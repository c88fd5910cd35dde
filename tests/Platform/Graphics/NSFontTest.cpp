// SPDX-License-Identifier: MIT

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Graphics/FontSource.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>

namespace kx {

TEST(NSFont, NameGivesFamilyAndStyle) {
    const std::pair<const char*, const char*> rows[] = {
        // nullptr: not installed
        {"DejaVu Sans", "DejaVu Sans"},
        {"DejaVuSans", "DejaVu Sans"},
        {"dejavu sans", "DejaVu Sans"},
        {"DejaVuSans-Bold", "DejaVu Sans-Bold"},
        {"DejaVuSans-BoldOblique", "DejaVu Sans-BoldItalic"},
        {"DejaVu Sans Bold", "DejaVu Sans-Bold"},
        {"DejaVu Sans Semi Bold", nullptr},
        {"DejaVu Sans Semibold Italic", "DejaVu Sans-SemiboldItalic"},
        {"DejaVu Sans-Regular", "DejaVu Sans"},
        {"DejaVu Sans Mono", "DejaVu Sans Mono"},
        {"Amiri-Bold", "Amiri-Bold"},
        {"sans-serif", "sans-serif"},
        {"sans-serif-Light", "sans-serif-Light"},
        {"PingFangSC-Semibold", nullptr},
        {"Bold", nullptr},
        {"-Bold", nullptr},
        {"", nullptr},
    };
    for (const auto& [name, want] : rows) {
        const auto font = NSFont::fontWithName(name, 12);
        ASSERT_EQ(font != nullptr, want != nullptr) << "name: " << name;
        if (!font) continue;
        EXPECT_EQ(font->fontName(), want) << "name: " << name;
        EXPECT_TRUE(NSFont::fontWithName(font->fontName(), 12)->isEqual(*font)) << "name: " << name;
    }
    EXPECT_EQ(NSFont::fontWithName(std::nullopt, 12), nullptr);
}

TEST(NSFont, FallbackKeepsStyleAndSize) {
    const auto font = NSFont::fontWithNameOrFallback("PingFangSC-Semibold", 17);
    EXPECT_EQ(font->fontName(), "sans-serif-Semibold");
    EXPECT_EQ(font->pointSize(), 17);
    EXPECT_EQ(NSFont::fontWithNameOrFallback(std::nullopt, 17)->fontName(), "sans-serif");
    EXPECT_EQ(NSFont::fontWithNameOrFallback("Amiri-Bold", 9)->familyName(), "Amiri");
}

TEST(NSFont, IdentityTellsFacesAndSizesApart) {
    const auto font = NSFont::systemFontOfSize(14);
    EXPECT_EQ(font->identity(), NSFont::systemFontOfSize(14)->identity());
    EXPECT_NE(font->identity(), NSFont::systemFontOfSize(14.5)->identity());
    EXPECT_NE(font->identity(), NSFont::boldSystemFontOfSize(14)->identity());
    EXPECT_EQ(NSFont::systemFontOfSize(0)->pointSize(), NSFont::systemFontSize());
    EXPECT_EQ(NSFont::systemFontOfSize(-1e300)->pointSize(), NSFont::systemFontSize());
    EXPECT_EQ(NSFont::systemFontOfSize(1e300)->pointSize(), 2000);
}

TEST(FontSource, UnreadableConfigurationIsAnErrorAndChangesNothing) {
    const FontSource* before = &FontSource::slot().current();
    EXPECT_FALSE(Fonts::useConfiguration("/nowhere/fonts.conf").ok());
    EXPECT_EQ(&FontSource::slot().current(), before);
}

}  // namespace kx
