// SPDX-License-Identifier: MIT

#include <array>
#include <cmath>
#include <numbers>
#include <random>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Graphics/Resampling/Resampler.h>
#include <KXFoundation/Testing/PictureComparison.h>

namespace kx {
namespace {

/// Noise, hard edges, every alpha.
std::shared_ptr<NSBitmapImageRep> testPicture(std::uint32_t wide, std::uint32_t high) {
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(wide, high);
    std::mt19937 random(wide * 31 + high);
    for (std::size_t i = 0; i < bitmap->pixels().size(); ++i) {
        const std::uint32_t shape = i / 7 % 4, noise = static_cast<std::uint32_t>(random());
        const std::uint32_t alpha = shape == 0 ? 0 : shape == 3 ? noise >> 24 : 255;
        const auto colour = [&](int shift) {
            return (shape == 1 ? 255U : (noise >> shift & 255) * alpha / 255) << shift;
        };
        bitmap->pixels()[i] = alpha << 24 | colour(16) | colour(8) | colour(0);
    }
    return bitmap;
}

// The same by the book, in double precision.

using Pixel = std::array<double, 4>;  // blue, green, red, alpha

double lightOf(double e) {
    return e <= 0.04045 ? e / 12.92 : std::pow((e + 0.055) / 1.055, 2.4);
}
double encodedOf(double l) {
    return l <= 0.0031308 ? l * 12.92 : 1.055 * std::pow(l, 1 / 2.4) - 0.055;
}

double sinc(double x) {
    return x == 0 ? 1 : std::sin(std::numbers::pi * x) / (std::numbers::pi * x);
}

double weight(ResampleFilter filter, double left, double centre, double step) {
    if (filter == ResampleFilter::Area)
        return std::max(0.0, std::min(left + 1, centre + step / 2) - std::max(left, centre - step / 2));
    const double x = (left + 0.5 - centre) / std::max(step, 1.0);
    return std::abs(x) < 3 ? sinc(x) * sinc(x / 3) : 0;
}

/// One direction of a plane of pixels; answers the target's pixels with rows and columns exchanged.
std::vector<Pixel> turnedAndScaled(const std::vector<Pixel>& from, std::size_t size, double extent,
                                   std::size_t target, ResampleFilter filter) {
    const std::size_t lines = from.size() / size;
    std::vector<Pixel> to(target * lines);
    for (std::size_t i = 0; i < target; ++i) {
        double sum = 0;
        const double step = double(size) / extent, centre = std::min((double(i) + 0.5) * step, double(size));
        for (std::size_t k = 0; k < size; ++k) {
            const double w = weight(filter, double(k), centre, step);
            sum += w;
            for (std::size_t line = 0; w != 0 && line < lines; ++line)
                for (std::size_t c = 0; c < 4; ++c) to[i * lines + line][c] += w * from[line * size + k][c];
        }
        for (std::size_t line = 0; line < lines; ++line)
            for (double& c : to[i * lines + line]) c /= sum;
    }
    return to;
}

std::shared_ptr<NSBitmapImageRep> reference(const NSBitmapImageRep& from, std::uint32_t wide,
                                            std::uint32_t high, NSSize extent, ResampleOptions options) {
    const bool isLinear = options.light == ResampleLight::Linear;
    std::vector<Pixel> pixels;
    for (const std::uint32_t pixel : from.pixels()) {
        Pixel& p = pixels.emplace_back();
        for (std::size_t c = 0; c < 4; ++c) p[c] = (pixel >> 8 * c & 255) / 255.0;
        for (std::size_t c = 0; isLinear && p[3] > 0 && c < 3; ++c) p[c] = lightOf(p[c] / p[3]) * p[3];
    }
    pixels = turnedAndScaled(pixels, from.pixelsWide(), extent.width, wide, options.filter);
    pixels = turnedAndScaled(pixels, from.pixelsHigh(), extent.height, high, options.filter);
    auto to = NSBitmapImageRep::bitmapWithPixels(wide, high);
    for (std::size_t i = 0; i < pixels.size(); ++i) {
        Pixel& c = pixels[i];
        c[3] = std::clamp(c[3], 0.0, 1.0);
        for (std::size_t k = 0; k < 3; ++k) {
            c[k] = std::clamp(c[k], 0.0, c[3]);
            if (isLinear && c[3] > 0) c[k] = encodedOf(c[k] / c[3]) * c[3];
        }
        for (std::size_t k = 0; k < 4; ++k)
            to->pixels()[i] |= static_cast<std::uint32_t>(std::lround(c[k] * 255)) << 8 * k;
    }
    return to;
}

bool isPremultiplied(const NSBitmapImageRep& bitmap) {
    return std::ranges::all_of(bitmap.pixels(), [](std::uint32_t p) {
        return std::max({p & 255, p >> 8 & 255, p >> 16 & 255}) <= p >> 24;
    });
}

TEST(Resampler, EqualsTheReferenceOnEveryMachine) {
    const std::tuple<std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t, double, double> rows[] = {
        {64, 48, 16, 12, 16, 12},      // whole steps
        {101, 67, 33, 20, 33, 20},     // and others
        {37, 29, 91, 64, 91, 64},      // larger
        {61, 61, 61, 20, 61, 20},      // one side kept
        {50, 40, 20, 10, 20.7, 10.3},  // the part that fits
        {50, 40, 21, 11, 20.3, 10.2},  // and a part of a pixel more
        {700, 300, 5, 3, 5, 3},        // hundreds of pixels in one
        {32'767, 2, 1, 1, 1, 1},       // weights of less than a unit
        {9, 32'767, 3, 2, 3, 2},       // more rows in one than are added up first
        {1, 1, 9, 5, 9, 5},           {3, 2, 2, 3, 2, 3}, {2, 900, 2, 7, 2, 7},
    };
    for (const auto& [fromWide, fromHigh, toWide, toHigh, extentWide, extentHigh] : rows) {
        const auto from = testPicture(fromWide, fromHigh);
        const NSSize extent{extentWide, extentHigh};
        for (int choice = 0; choice < 4; ++choice) {
            ResampleOptions options{static_cast<ResampleFilter>(choice & 1),
                                    static_cast<ResampleLight>(choice / 2)};
            const auto wanted = reference(*from, toWide, toHigh, extent, options);
            const auto where = ::testing::Message() << fromWide << "x" << fromHigh << " to " << toWide << "x"
                                                    << toHigh << ", choice " << choice;
            const auto plain = NSBitmapImageRep::bitmapWithPixels(toWide, toHigh);
            options.speed = VectorSpeed::Plain;
            resample(*from, *plain, extent, options);
            EXPECT_TRUE(isPremultiplied(*plain)) << where;
            const auto difference = testing::compare(*plain, *wanted, {1, 0});
            EXPECT_TRUE(difference.accepted)
                << where << ": " << difference.pixels << " pixels, by up to " << difference.largest;
            for (const VectorSpeed speed : {VectorSpeed::Baseline, VectorSpeed::Best}) {
                const auto other = NSBitmapImageRep::bitmapWithPixels(toWide, toHigh);
                options.speed = speed;
                resample(*from, *other, extent, options);
                EXPECT_TRUE(testing::compare(*other, *plain).accepted) << where << ", speed " << int(speed);
            }
        }
    }
}

TEST(Resampler, MakesNothingOfSizesThatAreNone) {
    const auto from = testPicture(4, 4);
    EXPECT_EQ(resampled(*from, 0, 4), nullptr);
    EXPECT_EQ(resampled(*from, 40'000, 1), nullptr);
    const auto to = NSBitmapImageRep::bitmapWithPixels(2, 2);
    for (const double side : {0.0, -1.0, 1.0, HUGE_VAL, double(NAN)}) resample(*from, *to, {2, side});
    EXPECT_EQ(to->pixelAt(0, 0), 0U);
}

}  // namespace
}  // namespace kx
