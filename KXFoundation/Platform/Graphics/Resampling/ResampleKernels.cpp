// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Graphics/Resampling/ResampleKernels.h>

namespace kx {

namespace {

std::int16_t word(std::int32_t sum, int shift) {
    const std::int32_t rounded = (sum + (1 << shift >> 1)) >> shift;
    return static_cast<std::int16_t>(std::clamp(rounded, INT16_MIN, INT16_MAX));
}

template <class Row>
void blend(const Row* const* rows, const std::int16_t* weights, std::size_t rowCount, int shift,
           std::size_t values, std::int16_t* to) {
    for (std::size_t i = 0; i < values; ++i) {
        std::int32_t sum = 0;
        for (std::size_t k = 0; k < rowCount; ++k) sum += rows[k][i] * weights[k];
        to[i] = word(sum, shift);
    }
}

void blendBytes(const std::uint8_t* const* rows, const std::int16_t* weights, std::size_t rowCount, int shift,
                std::size_t values, std::int32_t*, std::int16_t* to) {
    blend(rows, weights, rowCount, shift, values, to);
}

void sumBytes(const std::uint8_t* rows, std::size_t rowCount, std::size_t values, std::int16_t* to) {
    for (std::size_t i = 0; i < values; ++i) {
        int sum = 0;
        for (std::size_t k = 0; k < rowCount; ++k) sum += rows[k * values + i];
        to[i] = static_cast<std::int16_t>(sum);
    }
}

void shrinkRow(const std::int16_t* row, const std::uint32_t* firsts, const std::int16_t* weights,
               std::size_t weightCount, int shift, std::size_t pixels, std::int16_t* to) {
    for (std::size_t x = 0; x < pixels; ++x, weights += weightCount) {
        const std::int16_t* from = row + std::size_t{firsts[x]} * 4;
        for (std::size_t channel = 0; channel < 4; ++channel) {
            std::int32_t sum = 0;
            for (std::size_t k = 0; k < weightCount; ++k) sum += from[4 * k + channel] * weights[k];
            *to++ = word(sum, shift);
        }
    }
}

void storePixels(const std::int16_t* words, std::size_t pixels, std::uint32_t* to) {
    for (std::size_t x = 0; x < pixels; ++x, words += 4) {
        const int alpha = std::clamp<int>(words[3], 0, 255);
        const auto held = [&](int i) {
            return static_cast<std::uint32_t>(std::clamp<int>(words[i], 0, alpha));
        };
        to[x] = static_cast<std::uint32_t>(alpha) << 24 | held(2) << 16 | held(1) << 8 | held(0);
    }
}

}  // namespace

const ResampleKernels kPlainResampleKernels{blendBytes, sumBytes, blend<std::int16_t>, shrinkRow,
                                            storePixels};

const ResampleKernels& ResampleKernels::at(VectorSpeed speed) noexcept {
    switch (availableSpeed(speed)) {
#if defined(__x86_64__)
        case VectorSpeed::Best:
            return kWideResampleKernels;
        case VectorSpeed::Baseline:
            return kBaselineResampleKernels;
#endif
        default:
            return kPlainResampleKernels;
    }
}

}  // namespace kx
