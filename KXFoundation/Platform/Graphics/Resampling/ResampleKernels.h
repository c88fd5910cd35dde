// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

#include <KXFoundation/Platform/Graphics/VectorSpeed.h>

/// The five loops that resampling spends its time in. A picture goes through them as words: 16-bit
/// fixed-point values, four to a pixel. Counts of weights are multiples of ResampleTaps::kStep; sums are
/// exact, so that their order does not show. Private to Graphics.
namespace kx {

struct ResampleKernels {
    /// Values that a row of words must hold behind its last one; they meet weights of 0.
    static constexpr std::size_t kPadding = 16;

    /// to[i] = sum of rows[k][i] * weights[k], shifted right and rounded. `sums` is room for `values`
    /// numbers.
    void (*blendBytes)(const std::uint8_t* const* rows, const std::int16_t* weights, std::size_t rowCount,
                       int shift, std::size_t values, std::int32_t* sums, std::int16_t* to);
    /// to[i] = the sum of value i of `rowCount` rows, at most 64, that lie `values` bytes apart from `rows`
    /// on.
    void (*sumBytes)(const std::uint8_t* rows, std::size_t rowCount, std::size_t values, std::int16_t* to);
    void (*blendWords)(const std::int16_t* const* rows, const std::int16_t* weights, std::size_t rowCount,
                       int shift, std::size_t values, std::int16_t* to);
    /// For each pixel x: the sum over `weightCount` pixels of `row` from firsts[x] on.
    void (*shrinkRow)(const std::int16_t* row, const std::uint32_t* firsts, const std::int16_t* weights,
                      std::size_t weightCount, int shift, std::size_t pixels, std::int16_t* to);
    /// Words of whole levels to premultiplied pixels: alpha held to 0 to 255, colours to 0 to alpha.
    void (*storePixels)(const std::int16_t* words, std::size_t pixels, std::uint32_t* to);

    [[nodiscard]] static const ResampleKernels& at(VectorSpeed speed) noexcept;
};

extern const ResampleKernels kPlainResampleKernels;
#if defined(__x86_64__)
extern const ResampleKernels kBaselineResampleKernels;
extern const ResampleKernels kWideResampleKernels;
#endif

}  // namespace kx
