// SPDX-License-Identifier: MIT

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSMutableAttributedString.h>
#include <KXFoundation/Platform/Graphics/CGMutablePath.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/NSStringDrawing.h>
#include <KXFoundation/UI/KXUIUtils.h>

namespace kx {
namespace {

using Text = std::shared_ptr<NSMutableAttributedString>;

std::shared_ptr<NSFont> font(std::string_view name, double size = 14) {
    return NSFont::fontWithNameOrFallback(name, size);
}

Text styled(std::string_view text, const std::shared_ptr<NSFont>& font) {
    Value attributes;
    if (font) attributes = DictionaryBuilder().set(NSFontAttributeName, Value(font)).build();
    return NSMutableAttributedString::initWithString(text, attributes);
}

Text joined(std::initializer_list<Text> parts) {
    auto whole = NSMutableAttributedString::initWithString("");
    for (const Text& part : parts) whole->appendAttributedString(*part);
    return whole;
}

std::shared_ptr<CGMutablePath> outlined(const Text& text) {
    auto path = CGMutablePath::path();
    KXUIUtils::renderNSAttributeString(text, path);
    return path;
}

TEST(KXUIUtils, MeasuresTexts) {
    const auto plain = font("DejaVu Sans", 16);
    const double wide = KXUIUtils::sizeWith("one two three four", plain).width;
    const double line = KXUIUtils::sizeWith("one", plain).height;
    const double endless = std::numeric_limits<double>::infinity();
    const std::tuple<const char*, double, double, double> rows[] = {
        {"one two three four", endless, wide, 1},
        {"one two three four", wide + 1, wide, 1},
        {"one two three four", wide * 0.62, wide * 0.62, 2},
        {"wwww", 1, 13.2, 4},
        {"one two three four", 0, wide, 1},
        {"one two three four", -5, wide, 1},
        {"one\ntwo", endless, wide / 3, 2},
        {"", endless, 0, 1},
    };
    for (const auto& [text, maxWidth, most, lines] : rows) {
        const NSSize size = KXUIUtils::sizeWith(text, plain, maxWidth);
        EXPECT_LE(size.width, most) << text << " in " << maxWidth;
        EXPECT_GE(size.width, most / 2) << text << " in " << maxWidth;
        EXPECT_NEAR(size.height, lines * line, 0.01) << text << " in " << maxWidth;
        EXPECT_EQ(KXUIUtils::sizeWith(text, plain, maxWidth), size) << "asked again";
    }
    EXPECT_NE(wide, std::ceil(wide));  // not rounded
    EXPECT_EQ(KXUIUtils::sizeWith(std::nullopt, plain), NSSize());
    EXPECT_EQ(KXUIUtils::sizeWith("one", nullptr), KXUIUtils::sizeWith("one", NSFont::systemFontOfSize(0)));
    EXPECT_EQ(KXUIUtils::sizeWith("one", font("Nowhere-Bold", 16)),
              KXUIUtils::sizeWith("one", NSFont::boldSystemFontOfSize(16)));
}

TEST(KXUIUtils, BoundingRectanglesBeginAtTheBaselineOrTheTop) {
    const auto rect = [](NSStringDrawingOptions options) {
        return NSString_Drawing::boundingRectWithSize("one two", {30, 0}, options, font("DejaVu Sans"));
    };
    const NSRect lines = rect(NSStringDrawingOptions::UsesLineFragmentOrigin);
    const NSRect line = rect(NSStringDrawingOptions::None);
    EXPECT_EQ(lines.origin, NSPoint());
    EXPECT_NEAR(lines.size.height, 2 * line.size.height, 0.01);
    EXPECT_LT(line.origin.y, -0.7 * line.size.height);
    EXPECT_GT(line.maxY(), 0);
}

TEST(KXUIUtils, OutlinesEachRunInItsFont) {
    const auto serif = font("DejaVu Serif", 20), sans = font("DejaVu Sans", 20);
    const Text other = NSMutableAttributedString::initWithString(
        "quay", DictionaryBuilder().set(NSFontAttributeName, "DejaVu Sans").build());
    const std::tuple<const char*, Text, Text, bool> rows[] = {
        {"no font after one", joined({styled("Har", serif), styled("bour", nullptr)}),
         styled("Harbour", serif), true},
        {"no font at all", styled("Harbour", nullptr), styled("Harbour", NSFont::systemFontOfSize(0)), true},
        {"no font before one", joined({styled("a", nullptr), styled("b", serif)}),
         joined({styled("a", NSFont::systemFontOfSize(0)), styled("b", serif)}), true},
        {"a font attribute that is no font", joined({styled("Har", serif), other}), styled("Harquay", serif),
         true},
        {"two fonts", joined({styled("Har", serif), styled("bour", sans)}), styled("Harbour", serif), false},
        {"two sizes", styled("Harbour", serif), styled("Harbour", font("DejaVu Serif", 21)), false},
    };
    for (const auto& [what, text, want, equal] : rows) {
        EXPECT_FALSE(outlined(text)->isEmpty()) << what;
        EXPECT_EQ(outlined(text)->isEqual(*outlined(want)), equal) << what;
    }
}

TEST(KXUIUtils, OutlinesAreAppendedWhereTheGlyphsStand) {
    const auto sans = font("DejaVu Sans", 20);
    const NSRect box = outlined(styled("HH", sans))->pathBoundingBox();
    const NSRect letter = outlined(styled("H", sans))->pathBoundingBox();
    EXPECT_NEAR(box.size.width, letter.size.width + KXUIUtils::sizeWith("H", sans).width, 0.01);
    EXPECT_LT(box.origin.y, -14);  // y grows downwards
    // A line from right to left: the first letter stands on the right.
    const NSRect arabic = outlined(styled("ا", sans))->pathBoundingBox();
    const NSRect before = outlined(styled("ا    ", sans))->pathBoundingBox();
    EXPECT_GT(before.origin.x, arabic.origin.x + 10);

    auto path = CGMutablePath::path();
    path->addRect({-5, -5, 1, 1});
    KXUIUtils::renderNSAttributeString(styled("H", sans), path);
    EXPECT_EQ(path->elements()[0], CGMutablePath::Element::MoveToPoint);
    EXPECT_EQ(path->points()[0], (NSPoint{-5, -5}));
    EXPECT_GT(path->points().size(), 10u);
    KXUIUtils::renderNSAttributeString(nullptr, path);
    KXUIUtils::renderNSAttributeString(styled("H", sans), nullptr);
}

}  // namespace
}  // namespace kx
