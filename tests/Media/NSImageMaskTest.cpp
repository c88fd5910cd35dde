// SPDX-License-Identifier: MIT

#include <cmath>

#include <gtest/gtest.h>

#include <KXFoundation/Media/NSImage_Mask.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/UI/KXUIUtils.h>

namespace kx {
namespace {

constexpr std::uint32_t kBlue = 0xFF0000FF, kGreen = 0xFF00FF00;

/// Blue above, half transparent on the right; nothing below.
std::shared_ptr<NSBitmapImageRep> topHalf(std::uint32_t wide, std::uint32_t high) {
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(wide, high);
    for (std::uint32_t y = 0; y < high / 2; ++y)
        for (std::uint32_t x = 0; x < wide; ++x)
            bitmap->pixels()[y * wide + x] = x < wide / 2 ? kBlue : 0x80000080;
    return bitmap;
}

std::shared_ptr<NSBitmapImageRep> onlyBitmap(const NSImage& image) {
    return image.representations().size() == 1 ? objectCast<NSBitmapImageRep>(image.representations()[0])
                                               : nullptr;
}

TEST(NSImage_Mask, ColoursTheShapeUpright) {
    const auto green = NSColor::colorWithRed(0, 1, 0, 1);
    for (const double scale : {1.0, 2.0}) {
        const auto pixels = static_cast<std::uint32_t>(40 * scale);
        const auto made = NSImage_Mask::imageContentWithColor(
            NSImage::initWithBitmap(topHalf(pixels, pixels), scale), green);
        EXPECT_EQ(made->size(), (NSSize{40, 40}));
        const auto bitmap = onlyBitmap(*made);
        ASSERT_NE(bitmap, nullptr) << scale;
        EXPECT_EQ(bitmap->pixelsWide(), 40U);
        EXPECT_EQ(bitmap->colorSpaceName(), "NSCalibratedRGBColorSpace");
        EXPECT_EQ(bitmap->pixelAt(10, 10), kGreen) << scale;
        EXPECT_EQ(bitmap->pixelAt(30, 10), 0x80008000U) << scale;
        EXPECT_EQ(bitmap->pixelAt(10, 30), 0U) << scale;
    }
    const auto image = NSImage::initWithBitmap(topHalf(4, 4));
    EXPECT_EQ(NSImage_Mask::imageContentWithColor(image, nullptr), nullptr);
    EXPECT_EQ(NSImage_Mask::imageContentWithColor(nullptr, green), nullptr);
    const auto nothing = NSImage_Mask::imageContentWithColor(NSImage::initWithSize({}), green);
    EXPECT_EQ(nothing->size(), (NSSize{1, 1}));
    EXPECT_EQ(onlyBitmap(*nothing)->pixelAt(0, 0), 0U);
}

TEST(NSImage_Mask, GreyHasHalfTheContrastAndAPointToAPixel) {
    const std::pair<std::uint32_t, std::uint32_t> rows[] = {
        {0xFF000000, 0xFF404040}, {0xFFFFFFFF, 0xFFBFBFBF}, {0xFF808080, 0xFF808080},
        {0xFFFF0000, 0xFF5B5B5B}, {0xFF00FF00, 0xFF9B9B9B}, {0xFF0000FF, 0xFF494949},
        {0x80000000, 0x80202020}, {0x80808080, 0x80606060}, {0x00000000, 0x00000000},
        {0x01010101, 0x01010101},
    };
    for (const auto& [pixel, grey] : rows) {
        const auto bitmap = NSBitmapImageRep::bitmapWithPixels(6, 4);
        std::ranges::fill(bitmap->pixels(), pixel);
        const auto made = NSImage_Mask::grayImage(NSImage::initWithBitmap(bitmap, 2));
        EXPECT_EQ(made->size(), (NSSize{6, 4}));
        EXPECT_EQ(onlyBitmap(*made)->pixelAt(5, 3), grey) << std::hex << pixel;
    }
    EXPECT_EQ(NSImage_Mask::grayImage(nullptr), nullptr);
    EXPECT_TRUE(NSImage_Mask::grayImage(NSImage::initWithSize({4, 4}))->representations().empty());
}

TEST(NSImage_Mask, ScalesToAWidth) {
    const std::tuple<std::uint32_t, std::uint32_t, double, NSSize, std::uint32_t, std::uint32_t> rows[] = {
        {200, 100, 50, {50, 25}, 50, 25},
        {100, 300, 0, {1, 3}, 1, 3},
        {200, 100, 50.5, {50.5, 25.25}, 50, 25},
        {100, 10, 5, {}, 0, 0},
        {10, 10, -4, {}, 0, 0},
        {10, 10, 0.5, {}, 0, 0},
        {10, 10, 1e9, {}, 0, 0},
        {10, 10, NAN, {}, 0, 0},
    };
    for (const auto& [wide, high, width, size, pixelsWide, pixelsHigh] : rows) {
        const auto bitmap = NSBitmapImageRep::bitmapWithPixels(wide, high);
        std::ranges::fill(bitmap->pixels(), 0x80104080);
        const auto made = NSImage_Mask::fixImageSizeWithWidth(NSImage::initWithBitmap(bitmap), width);
        EXPECT_EQ(made->size(), size) << width;
        const auto scaled = onlyBitmap(*made);
        ASSERT_EQ(scaled != nullptr, pixelsWide > 0) << width;
        if (!scaled) continue;
        EXPECT_EQ(scaled->pixelsWide(), pixelsWide) << width;
        EXPECT_EQ(scaled->pixelsHigh(), pixelsHigh) << width;
        EXPECT_EQ(scaled->pixelAt(pixelsWide - 1, pixelsHigh - 1), 0x80104080) << width;
    }
    const auto image = NSImage::initWithBitmap(topHalf(30, 20));
    EXPECT_EQ(NSImage_Mask::fixImageSizeWithWidth(image, 30), image);
    EXPECT_TRUE(
        NSImage_Mask::fixImageSizeWithWidth(NSImage::initWithSize({0, 5}), 30)->representations().empty());
}

TEST(KXUIUtils, SizesAreNeverExactlyZero) {
    EXPECT_EQ(KXUIUtils::getNotZeroCGSize({0, 0}), (NSSize{1, 1}));
    EXPECT_EQ(KXUIUtils::getNotZeroCGSize({0, 5}), (NSSize{1, 5}));
    EXPECT_EQ(KXUIUtils::getNotZeroCGSize({-3, 0.5}), (NSSize{-3, 0.5}));
}

}  // namespace
}  // namespace kx
