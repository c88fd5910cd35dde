// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <cstdint>

/// Pixels 0xAARRGGBB with and without their colours multiplied by their alpha. Private to Graphics.
namespace kx {

constexpr std::uint32_t channel(std::uint32_t pixel, int shift) noexcept {
    return pixel >> shift & 255;
}

/// Rounded to the nearest.
constexpr std::uint32_t premultiplied(std::uint32_t pixel) noexcept {
    const std::uint32_t alpha = channel(pixel, 24);
    const auto times = [&](int shift) { return (channel(pixel, shift) * alpha + 127) / 255 << shift; };
    return alpha == 255 ? pixel : alpha << 24 | times(16) | times(8) | times(0);
}

/// Colours under an alpha of 0 are lost; others, multiplied again, give the same pixel.
constexpr std::uint32_t straight(std::uint32_t pixel) noexcept {
    const std::uint32_t alpha = channel(pixel, 24);
    if (alpha == 0) return 0;
    const auto over = [&](int shift) {
        return std::min<std::uint32_t>((channel(pixel, shift) * 255 + alpha / 2) / alpha, 255) << shift;
    };
    return alpha == 255 ? pixel : alpha << 24 | over(16) | over(8) | over(0);
}

/// The opaque pixel that is seen where the premultiplied one lies over white.
constexpr std::uint32_t overWhite(std::uint32_t pixel) noexcept {
    const std::uint32_t white = 255 - channel(pixel, 24);
    const auto plus = [&](int shift) {
        return std::min<std::uint32_t>(channel(pixel, shift) + white, 255) << shift;
    };
    return 0xFF000000 | plus(16) | plus(8) | plus(0);
}

}  // namespace kx
