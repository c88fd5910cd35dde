// SPDX-License-Identifier: MIT

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Graphics/NSColor.h>

namespace kx {
namespace {

TEST(NSColor, KeepsItsComponentsToTheLastBitAndHoldsThemToTheirRange) {
    const double third = 1.0f / 3.0f;
    EXPECT_EQ(NSColor::colorWithRed(third, 0.1, 0, 1)->components(), (ColorComponents{third, 0.1, 0, 1}));
    const double nan = std::numeric_limits<double>::quiet_NaN();
    EXPECT_EQ(NSColor::colorWithRed(-1, 2, nan, 7)->components(), (ColorComponents{0, 1, 0, 1}));
    EXPECT_EQ(NSColor::clearColor()->components(), ColorComponents{});
    EXPECT_EQ(NSColor::colorWithWhite(0.25, 0.5)->components(), (ColorComponents{0.25, 0.25, 0.25, 0.5}));
}

TEST(NSColor, SemanticColorFollowsTheLookOfTheThread) {
    const auto text = NSColor::textColor();
    const double light = text->redComponent();
    const ScopedAppearance dark(NSAppearance::Dark);
    EXPECT_LT(light, 0.2);
    EXPECT_GT(text->redComponent(), 0.8);
    EXPECT_GT(text->colorWithAlphaComponent(0.5)->redComponent(), 0.8);
}

double linear(double encoded) {
    return encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
}

double luminance(const ColorComponents& c) {
    return 0.2126 * linear(c.red) + 0.7152 * linear(c.green) + 0.0722 * linear(c.blue);
}

double contrast(const NSColor& a, const NSColor& b) {
    const double one = luminance(a.components()) + 0.05;
    const double other = luminance(b.components()) + 0.05;
    return one > other ? one / other : other / one;
}

// WCAG 2.1, success criterion 1.4.3: text has a contrast of at least 4.5 to 1.
TEST(NSColor, TextIsReadableInBothLooks) {
    const std::tuple<const char*, std::shared_ptr<NSColor>, std::shared_ptr<NSColor>> rows[] = {
        {"text on window", NSColor::textColor(), NSColor::windowBackgroundColor()},
        {"text on field", NSColor::textColor(), NSColor::controlBackgroundColor()},
        {"text on button", NSColor::textColor(), NSColor::controlColor()},
        {"secondary on window", NSColor::secondaryLabelColor(), NSColor::windowBackgroundColor()},
        {"secondary on field", NSColor::secondaryLabelColor(), NSColor::controlBackgroundColor()},
        {"placeholder on field", NSColor::placeholderTextColor(), NSColor::controlBackgroundColor()},
        {"text on accent", NSColor::alternateSelectedControlTextColor(), NSColor::controlAccentColor()},
    };
    for (const auto look : {NSAppearance::Light, NSAppearance::Dark}) {
        const ScopedAppearance scope(look);
        for (const auto& [what, text, background] : rows)
            EXPECT_GE(contrast(*text, *background), 4.5)
                << what << (look == NSAppearance::Dark ? ", dark" : ", light");
    }
}

}  // namespace
}  // namespace kx
