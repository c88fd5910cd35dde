// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include <KXFoundation/Platform/Graphics/VectorSpeed.h>

/// Private to Graphics.
namespace kx {

/// New colours as sums of a premultiplied pixel's four channels (blue, green, red, alpha), in fixed point.
struct ChannelMix {
    std::int16_t weights[3][4];  ///< of blue, green and red
    int bits;                    ///< 1 << bits is 1
    bool isGrey;                 ///< all three rows are the same
};

/// The loop over pixels; results are rounded and held to 0 to alpha. `to` may be `from`.
using MixPixels = void (*)(const ChannelMix& mix, const std::uint32_t* from, std::size_t count,
                           std::uint32_t* to);

void mixPixelsPlain(const ChannelMix& mix, const std::uint32_t* from, std::size_t count, std::uint32_t* to);
#if defined(__x86_64__)
void mixPixelsBaseline(const ChannelMix& mix, const std::uint32_t* from, std::size_t count,
                       std::uint32_t* to);
void mixPixelsWide(const ChannelMix& mix, const std::uint32_t* from, std::size_t count, std::uint32_t* to);
#endif

[[nodiscard]] MixPixels mixPixelsAt(VectorSpeed speed) noexcept;

}  // namespace kx
