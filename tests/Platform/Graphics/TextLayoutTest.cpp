// SPDX-License-Identifier: MIT

#include <algorithm>
#include <limits>
#include <thread>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Graphics/FontSource.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Graphics/TextLayout.h>

namespace kx {
namespace {

constexpr const char* kArabic = "مرحبا بالعالم";
constexpr const char* kMixed = "Files: مرحبا 12";

TextMeasure measured(std::string_view text, const TextFlow& flow = {}, double size = 14) {
    return TextLayout(text, NSFont::systemFontOfSize(size), flow).measure();
}

double width(std::string_view text) {
    return measured(text).size.width;
}

std::shared_ptr<NSBitmapImageRep> drawn(std::string_view text, const TextFlow& flow,
                                        std::uint32_t wide = 200) {
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(wide, 60);
    const TextLayout layout(text, NSFont::systemFontOfSize(14), flow);
    GraphicsContext::onBitmap(bitmap)->drawText(layout, {}, *NSColor::blackColor());
    return bitmap;
}

/// The first and the last column with ink; {wide, 0} if there is none.
struct Ink {
    std::uint32_t left, right;
};
Ink ink(const NSBitmapImageRep& bitmap) {
    Ink ink{bitmap.pixelsWide(), 0};
    for (std::uint32_t i = 0; i < bitmap.pixels().size(); ++i) {
        if (bitmap.pixels()[i] == 0) continue;
        ink.left = std::min(ink.left, i % bitmap.pixelsWide());
        ink.right = std::max(ink.right, i % bitmap.pixelsWide());
    }
    return ink;
}

TEST(TextLayout, ArabicIsShaped) {
    // A word of joined letters is narrower than its letters one by one.
    EXPECT_LT(width("بيت"), 0.8 * (width("ب") + width("ي") + width("ت")));
    // Zero-width non-joiners keep the letters apart; the same letters then have other forms.
    EXPECT_GT(width("ب\u200Cي\u200Cت"), 1.2 * width("بيت"));
    EXPECT_LT(width("لا"), width("ل") + width("ا"));  // the ligature
}

TEST(TextLayout, MixedLineIsAsWideAsItsParts) {
    EXPECT_NEAR(width(kMixed), width("Files: ") + width("مرحبا") + width(" 12"), 0.1);
    EXPECT_EQ(measured(kMixed).lineCount, 1u);
}

TEST(TextLayout, ScriptsAreDrawnWithGlyphsOfTheirOwn) {
    for (const char* text : {"Aa", "مر", "语言", "Яз", "ελ"}) {
        const auto bitmap = drawn(text, {});
        const auto missing = drawn("\U000F0000\U000F0001", {});  // private use: boxes
        EXPECT_NE(ink(*bitmap).right, 0u) << text;
        EXPECT_FALSE(std::ranges::equal(bitmap->pixels(), missing->pixels())) << text;
    }
    EXPECT_FALSE(std::ranges::equal(drawn("语", {})->pixels(), drawn("言", {})->pixels()));
}

TEST(TextLayout, AlignmentPlacesLines) {
    using Align = NSTextAlignment;
    constexpr auto natural = WritingDirection::Natural;
    constexpr auto ltr = WritingDirection::LeftToRight;
    constexpr auto rtl = WritingDirection::RightToLeft;
    enum class Side { Left, Middle, Right };
    const std::tuple<const char*, Align, WritingDirection, Side> rows[] = {
        {"Hello", Align::Natural, natural, Side::Left},   {kArabic, Align::Natural, natural, Side::Right},
        {"Hello", Align::Natural, rtl, Side::Right},      {kArabic, Align::Natural, ltr, Side::Left},
        {"Hello", Align::Left, rtl, Side::Left},          {kArabic, Align::Left, rtl, Side::Left},
        {"Hello", Align::Right, ltr, Side::Right},        {kArabic, Align::Left, natural, Side::Left},
        {"Hello", Align::Center, ltr, Side::Middle},      {kArabic, Align::Center, rtl, Side::Middle},
        {"Hello", Align::Justified, natural, Side::Left}, {kArabic, Align::Justified, natural, Side::Right},
    };
    for (const auto& [text, alignment, direction, wantSide] : rows) {
        const auto [left, right] = ink(*drawn(text, {200, alignment, direction}));
        const std::uint32_t before = left, after = 199 - right;
        const Side side = before <= 2 ? Side::Left : after <= 2 ? Side::Right : Side::Middle;
        EXPECT_EQ(side, wantSide) << text << ", alignment " << int(alignment) << ", direction "
                                  << int(direction) << ": " << before << " before, " << after << " after";
        if (wantSide == Side::Middle) {
            EXPECT_NEAR(before, after, 3) << text;
        }
    }
}

TEST(TextLayout, EachParagraphFollowsItsOwnDirection) {
    std::string lines = "Hello\n";
    lines += kArabic;
    const auto both = drawn(lines, {200});
    EXPECT_LE(ink(*both).left, 2u);
    EXPECT_GE(ink(*both).right, 197u);
    EXPECT_FALSE(measured("Hello").isRightToLeft);
    EXPECT_TRUE(measured(kArabic).isRightToLeft);
}

TEST(TextLayout, FlowsIntoItsWidth) {
    const std::string text = "one two three four five six seven eight nine ten";
    const TextMeasure line = measured(text);
    const TextMeasure wrapped = measured(text, {.width = 100});
    EXPECT_GT(wrapped.lineCount, 3u);
    EXPECT_LE(wrapped.size.width, 100);
    EXPECT_NEAR(wrapped.size.height, wrapped.lineCount * line.size.height, 0.01);
    EXPECT_FALSE(wrapped.isTruncated);

    const TextMeasure cut = measured(text, {.width = 100, .lineBreak = LineBreakMode::TruncateTail});
    EXPECT_EQ(cut.lineCount, 1u);
    EXPECT_TRUE(cut.isTruncated);
    EXPECT_LE(cut.size.width, 100.01);

    const TextMeasure two = measured(text, {.width = 100, .maximumLines = 2});
    EXPECT_EQ(two.lineCount, 2u);
    EXPECT_TRUE(two.isTruncated);

    const TextMeasure clipped = measured(text, {.width = 100, .lineBreak = LineBreakMode::Clip});
    EXPECT_EQ(clipped.size, line.size);
}

TEST(TextLayout, RemembersWhatItMeasuredByAllThatMatters) {
    EXPECT_NE(width("Ahoy"), width("Ahoi"));
    EXPECT_NE(measured("Ahoy", {}, 14).size, measured("Ahoy", {}, 15).size);
    EXPECT_NE(measured("a b", {.width = 1}).size, measured("a b", {.width = 100}).size);
    EXPECT_EQ(measured("Ahoy").size, measured("Ahoy").size);
    TextMeasure elsewhere;
    std::thread([&] { elsewhere = measured("Ahoy"); }).join();
    EXPECT_EQ(elsewhere.size, measured("Ahoy").size);
}

TEST(TextLayout, OtherFontsAreSeenAtOnce) {
    const double before = width("Harbour");
    {
        const ScopedPort<FontSource> scope(std::make_shared<FontSource>("/nowhere/fonts.conf"));
        EXPECT_GE(width("Harbour"), 0);  // the desktop's fonts, whatever they are
    }
    EXPECT_EQ(width("Harbour"), before);
}

TEST(TextLayout, HostileTextIsHarmless) {
    std::string arabic;
    while (arabic.size() < 20'000) arabic += kArabic;
    std::string marks = "a";
    while (marks.size() < 100'000) marks += "\u0301";
    const std::tuple<const char*, std::string, TextFlow, double> rows[] = {
        {"no UTF-8", "\xFF\xFE\xC3(\x80", {}, 14},
        {"a zero byte", std::string("a\0b", 3), {}, 14},
        {"cut in a letter", "abc\xD9", {}, 14},
        {"1 MB without a blank", std::string(1'000'000, 'x'), {.width = 223}, 14},
        {"1 MB in one line", std::string(1'000'000, 'W'), {}, 14},
        {"large letters in one line", std::string(100'000, 'W'), {}, 2000},
        {"only line ends", std::string(5'000, '\n'), {.width = 100}, 14},
        {"only direction marks", "\u202E\u202E\u2067\u2067", {.width = 100}, 14},
        {"a tower of marks", marks, {}, 14},
        {"a tower of marks in a column", marks, {.width = 100}, 14},
        {"long Arabic", arabic, {.width = 50, .alignment = NSTextAlignment::Justified}, 14},
        {"negative width", "abc def", {.width = -5}, 14},
        {"width that is no number", "abc def", {.width = std::numeric_limits<double>::quiet_NaN()}, 14},
    };
    for (const auto& [what, text, flow, size] : rows) {
        const TextMeasure measure = measured(text, flow, size);
        EXPECT_GE(measure.size.width, 0) << what;
        EXPECT_GT(measure.size.height, 0) << what;
        EXPECT_LT(measure.size.width, 2'100'000) << what;
        drawn(text, flow);
    }
}

}  // namespace
}  // namespace kx
