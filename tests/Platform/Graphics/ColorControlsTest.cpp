// SPDX-License-Identifier: MIT

#include <cmath>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Graphics/Filters/ColorControls.h>
#include <KXFoundation/Testing/PictureComparison.h>

namespace kx {
namespace {

/// Every alpha with every value under it, and channels that differ; wide enough that it is written past the
/// caches.
std::shared_ptr<NSBitmapImageRep> manyPixels() {
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(1031, 1021);
    for (std::uint32_t i = 0; i < bitmap->pixels().size(); ++i) {
        const std::uint32_t alpha = i % 4 == 0 ? 255 : i / 3 & 255, value = (i >> 6 & 255) * alpha / 255;
        bitmap->pixels()[i] = alpha << 24 | value << 16 | (alpha - value) << 8 | (i * 7 & 255) * alpha / 255;
    }
    return bitmap;
}

std::uint32_t expected(std::uint32_t pixel, ColorControls controls) {
    const double alpha = pixel >> 24;
    const auto value = [&](int shift) { return (pixel >> shift & 255) / 255.0; };
    const double luma = 0.2126 * value(16) + 0.7152 * value(8) + 0.0722 * value(0);
    std::uint32_t result = pixel & 0xFF000000;
    for (const int shift : {0, 8, 16}) {
        const double c = luma + controls.saturation * (value(shift) - luma);
        const double to =
            controls.contrast * c + alpha / 255 * (controls.contrast * (controls.brightness - 0.5) + 0.5);
        result |= static_cast<std::uint32_t>(std::lround(std::clamp(to * 255, 0.0, alpha))) << shift;
    }
    return result;
}

TEST(ColorControls, EqualsTheFormulaOnEveryMachine) {
    const auto from = manyPixels();
    const auto wanted = NSBitmapImageRep::bitmapWithPixels(from->pixelsWide(), from->pixelsHigh());
    const auto plain = NSBitmapImageRep::bitmapWithPixels(from->pixelsWide(), from->pixelsHigh());
    const auto other = NSBitmapImageRep::bitmapWithPixels(from->pixelsWide(), from->pixelsHigh());
    const ColorControls rows[] = {{0, 0, 0.5}, {0, 1, 1},       {-0.3, 2, 4},
                                  {1, 0, 0},   {0.2, 0.4, 1.3}, {-1, 1.5, 0.7}};
    for (const ColorControls& row : rows) {
        const auto where = ::testing::Message()
                           << row.brightness << " " << row.saturation << " " << row.contrast;
        for (std::size_t i = 0; i < from->pixels().size(); ++i)
            wanted->pixels()[i] = expected(from->pixels()[i], row);
        applyColorControls(*from, *plain, row, VectorSpeed::Plain);
        const auto difference = testing::compare(*plain, *wanted, {1, 0});
        EXPECT_TRUE(difference.accepted) << where << ": by up to " << difference.largest;
        for (const VectorSpeed speed : {VectorSpeed::Baseline, VectorSpeed::Best}) {
            applyColorControls(*from, *other, row, speed);
            EXPECT_TRUE(testing::compare(*other, *plain).accepted) << where << ", speed " << int(speed);
        }
    }
}

TEST(ColorControls, HoldsWhatIsOutsideItsRange) {
    const auto from = NSBitmapImageRep::bitmapWithPixels(5, 1), to = NSBitmapImageRep::bitmapWithPixels(5, 1);
    std::ranges::fill(from->pixels(), 0xFF306090);
    applyColorControls(*from, *to, {NAN, NAN, NAN});
    EXPECT_EQ(to->pixelAt(4, 0), 0xFF306090);
    applyColorControls(*from, *to, {1e9, -5, HUGE_VAL});
    EXPECT_EQ(to->pixelAt(4, 0), 0xFFFFFFFF);
    applyColorControls(*from, *NSBitmapImageRep::bitmapWithPixels(4, 1), {});  // another size: nothing
}

}  // namespace
}  // namespace kx
