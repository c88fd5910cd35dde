// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

#include <KXFoundation/Platform/Graphics/Resampling/Resampler.h>

/// Private to Graphics.
namespace kx {

/// Which source values make each target value in one direction, as 16-bit fixed-point weights.
struct ResampleTaps {
    static constexpr std::uint32_t kStep = 4;

    std::vector<std::uint32_t> firsts;  ///< of each target value: where its source values begin
    std::vector<std::int16_t> weights;  ///< `count` of each target value; together they are 1 << bits
    /// A multiple of kStep. Windows reach less than that beyond the source, with weights of 0.
    std::uint32_t count = 0;
    int bits = 0;

    [[nodiscard]] const std::int16_t* weightsOf(std::size_t target) const noexcept {
        return weights.data() + target * count;
    }
};

struct ResampleAxis {
    std::uint32_t source;  ///< pixels
    double extent;         ///< target pixels that the source is drawn over
    std::uint32_t target;  ///< of them, how many are wanted
    /// The taps are for sums of this many source values, the last sum of what is left. The weights are
    /// those of the values that were summed.
    std::uint32_t summed = 1;

    [[nodiscard]] std::uint32_t values() const noexcept { return (source + summed - 1) / summed; }
};

/// `mostBits` keeps sums of weighted values inside 32 bits.
[[nodiscard]] ResampleTaps resampleTaps(ResampleFilter filter, ResampleAxis axis, int mostBits);

}  // namespace kx
