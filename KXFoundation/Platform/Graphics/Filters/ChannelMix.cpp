// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Graphics/Filters/ChannelMix.h>
#include <KXFoundation/Platform/Graphics/PixelAlpha.h>

namespace kx {

namespace {

std::uint32_t mixed(const std::int16_t (&weights)[4], int bits, std::uint32_t pixel) {
    std::int32_t sum = 1 << bits >> 1;
    for (int c = 0; c < 4; ++c) sum += weights[c] * static_cast<std::int32_t>(channel(pixel, 8 * c));
    const auto alpha = static_cast<std::int32_t>(channel(pixel, 24));
    return static_cast<std::uint32_t>(std::clamp(sum >> bits, 0, alpha));
}

}  // namespace

void mixPixelsPlain(const ChannelMix& mix, const std::uint32_t* from, std::size_t count, std::uint32_t* to) {
    for (std::size_t i = 0; i < count; ++i) {
        const std::uint32_t pixel = from[i];
        to[i] = pixel & 0xFF000000;
        for (int c = 0; c < 3; ++c) to[i] |= mixed(mix.weights[c], mix.bits, pixel) << 8 * c;
    }
}

MixPixels mixPixelsAt(VectorSpeed speed) noexcept {
    switch (availableSpeed(speed)) {
#if defined(__x86_64__)
        case VectorSpeed::Best:
            return mixPixelsWide;
        case VectorSpeed::Baseline:
            return mixPixelsBaseline;
#endif
        default:
            return mixPixelsPlain;
    }
}

}  // namespace kx
