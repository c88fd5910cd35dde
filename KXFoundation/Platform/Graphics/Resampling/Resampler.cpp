// SPDX-License-Identifier: MIT

#include <algorithm>
#include <bit>
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

// From this reduction of the rows on, rows are first added up, as many as leave about that reduction to the
// filter. The finest detail loses a percent of its contrast by it at most (sinc 1/13).
constexpr double kSumsFrom = 16, kSumsLeft = 8;
constexpr double kMostSummed = 1 << kFraction;  // sums take the place of the fraction's bits

/// How much wider a sum of so many values is.
int bitsOf(std::uint32_t summed) {
    return static_cast<int>(std::bit_width(summed - 1));
}

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
    [[nodiscard]] const std::uint8_t* bytesOf(std::size_t y) const {
        return reinterpret_cast<const std::uint8_t*>(sourceRow(y));
    }
    [[nodiscard]] std::uint32_t* targetRow(std::size_t y) const {
        return to.pixels().data() + y * to.pixelsWide();
    }

    void shrink(const std::int16_t* row, int shift, std::int16_t* words) const {
        kernels.shrinkRow(row, across.firsts.data(), across.weights.data(), across.count, shift,
                          to.pixelsWide(), words);
    }
};

/// Columns first: they are read as they lie in memory, and every byte is unpacked once for each row it is in.
void resampleColumnsFirst(const Job& job) {
    const std::size_t wide = job.from.pixelsWide();
    std::vector<const std::uint8_t*> rows(job.down.count);
    std::vector<std::int32_t> sums(wide * 4 + ResampleKernels::kPadding);
    auto blended = rowOfWords(wide), answer = rowOfWords(job.to.pixelsWide());
    for (std::size_t y = 0; y < job.to.pixelsHigh(); ++y) {
        findRows(rows, job.down, y, job.from.pixelsHigh(), [&](std::size_t row) { return job.bytesOf(row); });
        job.kernels.blendBytes(rows.data(), job.down.weightsOf(y), rows.size(), job.down.bits - kFraction,
                               wide * 4, sums.data(), blended.data());
        job.shrink(blended.data(), job.across.bits + kFraction, answer.data());
        job.kernels.storePixels(answer.data(), job.to.pixelsWide(), job.targetRow(y));
    }
}

/// Rows first: `read` makes words of each of `high` rows once, `store` makes pixels of the answer's. As many
/// shrunken rows are kept as an answer's needs, with `fraction` bits below what was read.
template <class Read, class Store>
void resampleRowsFirst(const Job& job, std::size_t high, int fraction, Read read, Store store) {
    const std::size_t wide = job.to.pixelsWide();
    auto whole = rowOfWords(job.from.pixelsWide()), kept = rowOfWords(wide, job.down.count);
    auto answer = rowOfWords(wide);
    const auto keptRow = [&](std::size_t y) { return kept.data() + y % job.down.count * wide * 4; };
    std::vector<const std::int16_t*> rows(job.down.count);
    std::size_t next = 0;
    for (std::size_t y = 0; y < job.to.pixelsHigh(); ++y) {
        for (const std::size_t end = std::min(job.down.firsts[y] + rows.size(), high); next < end; ++next) {
            read(next, whole.data());
            job.shrink(whole.data(), job.across.bits - fraction, keptRow(next));
        }
        findRows(rows, job.down, y, high, keptRow);
        job.kernels.blendWords(rows.data(), job.down.weightsOf(y), rows.size(), job.down.bits + fraction,
                               wide * 4, answer.data());
        store(answer.data(), job.targetRow(y));
    }
}

void resampleLinear(const Job& job) {
    resampleRowsFirst(
        job, job.from.pixelsHigh(), 0,
        [&](std::size_t y, std::int16_t* words) {
            toLinearLight(job.sourceRow(y), job.from.pixelsWide(), words);
        },
        [&](const std::int16_t* words, std::uint32_t* pixels) {
            fromLinearLight(words, job.to.pixelsWide(), pixels);
        });
}

/// Every byte is unpacked and added to its sum once, and none is weighed.
void resampleSums(const Job& job, std::uint32_t summed) {
    const std::uint32_t wide = job.from.pixelsWide(), high = job.from.pixelsHigh();
    resampleRowsFirst(
        job, (high + summed - 1) / summed, kFraction - bitsOf(summed),
        [&](std::size_t y, std::int16_t* words) {
            const std::size_t first = y * summed;
            job.kernels.sumBytes(job.bytesOf(first), std::min<std::size_t>(summed, high - first),
                                 std::size_t{wide} * 4, words);
        },
        [&](const std::int16_t* words, std::uint32_t* pixels) {
            job.kernels.storePixels(words, job.to.pixelsWide(), pixels);
        });
}

/// How many rows to add up before the filter; 1 if it shall have them all.
std::uint32_t rowsToSum(std::uint32_t rows, double extent, ResampleOptions options) {
    const double reduction = rows / extent;
    if (options.filter == ResampleFilter::Area || options.light == ResampleLight::Linear ||
        reduction < kSumsFrom)
        return 1;
    return static_cast<std::uint32_t>(std::min(std::round(reduction / kSumsLeft), kMostSummed));
}

/// Where all pixels but the last begin inside the extent, weights take no more memory than a few rows.
bool isExtent(double side, std::uint32_t pixels) {
    return side > 0 && std::isfinite(side) && side > pixels - 1.0;
}

}  // namespace

void resample(const NSBitmapImageRep& from, NSBitmapImageRep& to, NSSize extent, ResampleOptions options) {
    if (!isExtent(extent.width, to.pixelsWide()) || !isExtent(extent.height, to.pixelsHigh())) return;
    const bool isSameSize = extent.width == from.pixelsWide() && extent.height == from.pixelsHigh() &&
                            to.pixelsWide() == from.pixelsWide() && to.pixelsHigh() == from.pixelsHigh();
    if (isSameSize) {
        std::ranges::copy(from.pixels(), to.pixels().begin());
        return;
    }
    const bool isEncoded = options.light == ResampleLight::Encoded;
    const std::uint32_t summed = rowsToSum(from.pixelsHigh(), extent.height, options);
    const int downBits = isEncoded && summed == 1 ? kByteBits : kWordBits + bitsOf(summed);
    const Job job{
        from, to, resampleTaps(options.filter, {from.pixelsWide(), extent.width, to.pixelsWide()}, kWordBits),
        resampleTaps(options.filter, {from.pixelsHigh(), extent.height, to.pixelsHigh(), summed}, downBits),
        ResampleKernels::at(options.speed)};
    if (!isEncoded) return resampleLinear(job);
    summed == 1 ? resampleColumnsFirst(job) : resampleSums(job, summed);
}

std::shared_ptr<NSBitmapImageRep> resampled(const NSBitmapImageRep& from, std::uint32_t wide,
                                            std::uint32_t high, ResampleOptions options) {
    auto to = NSBitmapImageRep::bitmapWithPixels(wide, high);
    if (to) resample(from, *to, {static_cast<double>(wide), static_cast<double>(high)}, options);
    return to;
}

}  // namespace kx
