// SPDX-License-Identifier: MIT

#include <algorithm>
#include <array>
#include <cmath>

#include <KXFoundation/Platform/Graphics/PixelAlpha.h>
#include <KXFoundation/Platform/Graphics/Resampling/LinearLight.h>

namespace kx {

namespace {

constexpr int kFull = 16'384;
constexpr int kFineSteps = 1020;  // four to a level of 8 bits, for colours divided by their alpha

double lightOf(double encoded) {
    return encoded <= 0.04045 ? encoded / 12.92 : std::pow((encoded + 0.055) / 1.055, 2.4);
}

double encodedOf(double light) {
    return light <= 0.0031308 ? light * 12.92 : 1.055 * std::pow(light, 1 / 2.4) - 0.055;
}

struct Curves {
    Curves() {
        for (int i = 0; i <= kFineSteps; ++i)
            light[std::size_t(i)] =
                static_cast<std::uint16_t>(std::lround(kFull * lightOf(double(i) / kFineSteps)));
        for (int i = 0; i <= kFull; ++i)
            encoded[std::size_t(i)] =
                static_cast<std::uint16_t>(std::lround(65'535 * encodedOf(double(i) / kFull)));
    }
    std::array<std::uint16_t, kFineSteps + 1> light;
    std::array<std::uint16_t, kFull + 1> encoded;  // 65535 is full
};

const Curves& curves() {
    static const Curves made;
    return made;
}

std::int16_t lightWord(const Curves& table, std::uint32_t colour, std::uint32_t alpha) {
    if (alpha == 255) return static_cast<std::int16_t>(table.light[std::size_t{colour} * 4]);
    const std::uint32_t straight =
        std::min<std::uint32_t>((colour * kFineSteps + alpha / 2) / alpha, kFineSteps);
    return static_cast<std::int16_t>((table.light[straight] * alpha + 127) / 255);
}

std::uint32_t encodedByte(const Curves& table, int light, int cover) {
    const int straight = std::clamp((light * kFull + cover / 2) / cover, 0, kFull);
    const auto full = static_cast<std::uint64_t>(table.encoded[std::size_t(straight)]) * 255;
    constexpr std::uint64_t kOne = std::uint64_t{65'535} * kFull;
    return static_cast<std::uint32_t>((full * static_cast<std::uint64_t>(cover) + kOne / 2) / kOne);
}

}  // namespace

void toLinearLight(const std::uint32_t* pixels, std::size_t count, std::int16_t* words) {
    const Curves& table = curves();
    for (std::size_t i = 0; i < count; ++i, words += 4) {
        const std::uint32_t alpha = channel(pixels[i], 24);
        for (int c = 0; c < 3; ++c)
            words[c] = alpha == 0 ? std::int16_t{0} : lightWord(table, channel(pixels[i], 8 * c), alpha);
        words[3] = static_cast<std::int16_t>((alpha * kFull + 127) / 255);
    }
}

void fromLinearLight(const std::int16_t* words, std::size_t count, std::uint32_t* pixels) {
    const Curves& table = curves();
    for (std::size_t i = 0; i < count; ++i, words += 4) {
        const int cover = std::clamp<int>(words[3], 0, kFull);
        const auto alpha = static_cast<std::uint32_t>((cover * 255 + kFull / 2) / kFull);
        std::uint32_t pixel = alpha << 24;
        for (int c = 0; cover > 0 && c < 3; ++c)
            pixel |= std::min(encodedByte(table, words[c], cover), alpha) << (8 * c);
        pixels[i] = pixel;
    }
}

}  // namespace kx
