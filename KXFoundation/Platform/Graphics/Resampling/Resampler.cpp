#include <algorithm>
#include <cmath>
#include <span>
#include <vector>

#include <KXFoundation/Platform/Graphics/Resampling/LinearLight.h>
#include <KXFoundation/Platform/Graphics/Resampling/ResampleKernels.h>
#include <KXFoundation/Platform/Graphics/Resampling/ResampleTaps.h>
#include <KXFoundation/Platform/Graphics/Resampling/Resampler.h>

namespace kx {

namespace {

// Sums of the filter's largest swings must stay inside 32 bits: bytes take 22 bits of weight, words 16.
constexpr int kByteBits = 21, kWordBits = 15;
constexpr int kFraction = 6;  // bits that words of encoded values keep below a level

std::vector<std::int16_t> rowOfWords(std::size_t pixels, std::size_t rows = 1) {
    return std::vector<std::int16_t>(pixels * 4 * rows + ResampleKernels::kPadding);
}

/// Pointers to the rows that a target row is made of, as many as there are weights: the last one again where
/// the weights are 0.
template <class Row, class At>
void findRows(std::vector<const Row*>& rows, const ResampleTaps& taps, std::size_t y, std::size_t height,
              At at) {
    for (std::size_t k = 0; k < rows.size(); ++k) rows[k] = at(std::min(taps.firsts[y] + k, height - 1));
}

struct Job {
    const NSBitmapImageRep& from;
    NSBitmapImageRep& to;
    ResampleTaps across, down;
    const ResampleKernels& kernels;

    [[nodiscard]] const std::uint32_t* sourceRow(std::size_t y) const {
        return from.pixels().data() + y * from.pixelsWide();
    }
    [[nodiscard]] std::uint32_t* targetRow(std::size_t y) const {
        return to.pixels().data() + y * to.pixelsWide();
    }

    void shrink(const std::int16_t* row, int shift, std::int16_t* words) const {
        kernels.shrinkRow(row, across.firsts.data(), across.weights.data(), across.count, shift,
                          to.pixelsWide(), words);
    }
};

/// Columns first: they are read as they lie in memory, and every byte is unpacked once for four weights.
void resampleEncoded(const Job& job) {
    const std::size_t wide = job.from.pixelsWide(), values = wide * 4;
    std::vector<const std::uint8_t*> rows(job.down.count);
    std::vector<std::int32_t> sums(values + ResampleKernels::kPadding);
    auto blended = rowOfWords(wide), answer = rowOfWords(job.to.pixelsWide());
    for (std::size_t y = 0; y < job.to.pixelsHigh(); ++y) {
        findRows(rows, job.down, y, job.from.pixelsHigh(),
                 [&](std::size_t row) { return reinterpret_cast<const std::uint8_t*>(job.sourceRow(row)); });
        job.kernels.blendBytes(rows.data(), job.down.weightsOf(y), rows.size(), job.down.bits - kFraction,
                               values, sums.data(), blended.data());
        job.shrink(blended.data(), job.across.bits + kFraction, answer.data());
        job.kernels.storePixels(answer.data(), job.to.pixelsWide(), job.targetRow(y));
    }
}

/// Rows first, so that each is turned into light once; as many shrunken ones are kept as a target row needs.
void resampleLinear(const Job& job) {
    const std::size_t wide = job.to.pixelsWide(), high = job.from.pixelsHigh();
    auto light = rowOfWords(job.from.pixelsWide()), kept = rowOfWords(wide, job.down.count);
    auto answer = rowOfWords(wide);
    const auto keptRow = [&](std::size_t y) { return kept.data() + y % job.down.count * wide * 4; };
    std::vector<const std::int16_t*> rows(job.down.count);
    std::size_t next = 0;
    for (std::size_t y = 0; y < job.to.pixelsHigh(); ++y) {
        for (const std::size_t end = std::min(job.down.firsts[y] + rows.size(), high); next < end; ++next) {
            toLinearLight(job.sourceRow(next), job.from.pixelsWide(), light.data());
            job.shrink(light.data(), job.across.bits, keptRow(next));
        }
        findRows(rows, job.down, y, high, keptRow);
        job.kernels.blendWords(rows.data(), job.down.weightsOf(y), rows.size(), job.down.bits, wide * 4,
                               answer.data());
        fromLinearLight(answer.data(), wide, job.targetRow(y));
    }
}

bool isExtent(double side) {
    return side > 0 && std::isfinite(side);
}

}  // namespace

void resample(const NSBitmapImageRep& from, NSBitmapImageRep& to, NSSize extent, ResampleOptions options) {
    if (!isExtent(extent.width) || !isExtent(extent.height)) return;
    const bool isSameSize = extent.width == from.pixelsWide() && extent.height == from.pixelsHigh() &&
                            to.pixelsWide() == from.pixelsWide() && to.pixelsHigh() == from.pixelsHigh();
    if (isSameSize) {
        std::ranges::copy(from.pixels(), to.pixels().begin());
        return;
    }
    const bool isEncoded = options.light == ResampleLight::Encoded;
    const Job job{from, to,
                  resampleTaps(options.filter, {from.pixelsWide(), extent.width, to.pixelsWide()}, kWordBits),
                  resampleTaps(options.filter, {from.pixelsHigh(), extent.height, to.pixelsHigh()},
                               isEncoded ? kByteBits : kWordBits),
                  ResampleKernels::at(options.speed)};
    return isEncoded ? resampleEncoded(job) : resampleLinear(job);
}

std::shared_ptr<NSBitmapImageRep> resampled(const NSBitmapImageRep& from, std::uint32_t wide,
                                            std::uint32_t high, ResampleOptions options) {
    auto to = NSBitmapImageRep::bitmapWithPixels(wide, high);
    if (to) resample(from, *to, {static_cast<double>(wide), static_cast<double>(high)}, options);
    return to;
}

}  // namespace kx
