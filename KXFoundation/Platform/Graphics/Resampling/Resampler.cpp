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

// From this reduction of the rows on, means of rows are taken first, as many as leave that reduction to the
// filter. The finest detail loses under a percent of its contrast by it (sinc 1/16).
constexpr double kMeansFrom = 16, kMeansLeft = 8;

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

    /// One row of words with kFraction bits below a level; `rows` and `sums` are room for it.
    void blendColumns(const ResampleTaps& taps, std::size_t y, std::vector<const std::uint8_t*>& rows,
                      std::vector<std::int32_t>& sums, std::int16_t* words) const {
        findRows(rows, taps, y, from.pixelsHigh(),
                 [&](std::size_t row) { return reinterpret_cast<const std::uint8_t*>(sourceRow(row)); });
        kernels.blendBytes(rows.data(), taps.weightsOf(y), rows.size(), taps.bits - kFraction,
                           std::size_t{from.pixelsWide()} * 4, sums.data(), words);
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
        job.blendColumns(job.down, y, rows, sums, blended.data());
        job.shrink(blended.data(), job.across.bits + kFraction, answer.data());
        job.kernels.storePixels(answer.data(), job.to.pixelsWide(), job.targetRow(y));
    }
}

/// Rows first: `read` makes words of each of `high` rows once, `store` makes pixels of the answer's. As many
/// shrunken rows are kept as an answer's needs. `fraction`: how many bits the words have below those of
/// `store`.
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
            job.shrink(whole.data(), job.across.bits, keptRow(next));
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

/// The rows' number is first reduced by `means`, so that every byte is unpacked and weighed once only.
void resampleMeans(const Job& job, const ResampleTaps& means) {
    const std::size_t values = std::size_t{job.from.pixelsWide()} * 4;
    std::vector<const std::uint8_t*> rows(means.count);
    std::vector<std::int32_t> sums(values + ResampleKernels::kPadding);
    resampleRowsFirst(
        job, means.firsts.size(), kFraction,
        [&](std::size_t y, std::int16_t* words) { job.blendColumns(means, y, rows, sums, words); },
        [&](const std::int16_t* words, std::uint32_t* pixels) {
            job.kernels.storePixels(words, job.to.pixelsWide(), pixels);
        });
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
    const bool takesMeans = isEncoded && options.filter == ResampleFilter::Lanczos3 &&
                            from.pixelsHigh() >= kMeansFrom * extent.height;
    const std::uint32_t high =
        takesMeans ? static_cast<std::uint32_t>(std::ceil(kMeansLeft * extent.height)) : from.pixelsHigh();
    const int downBits = isEncoded && !takesMeans ? kByteBits : kWordBits;
    const Job job{from, to,
                  resampleTaps(options.filter, {from.pixelsWide(), extent.width, to.pixelsWide()}, kWordBits),
                  resampleTaps(options.filter, {high, extent.height, to.pixelsHigh()}, downBits),
                  ResampleKernels::at(options.speed)};
    if (!isEncoded) return resampleLinear(job);
    if (!takesMeans) return resampleColumnsFirst(job);
    resampleMeans(job,
                  resampleTaps(ResampleFilter::Area, {from.pixelsHigh(), double(high), high}, kByteBits));
}

std::shared_ptr<NSBitmapImageRep> resampled(const NSBitmapImageRep& from, std::uint32_t wide,
                                            std::uint32_t high, ResampleOptions options) {
    auto to = NSBitmapImageRep::bitmapWithPixels(wide, high);
    if (to) resample(from, *to, {static_cast<double>(wide), static_cast<double>(high)}, options);
    return to;
}

}  // namespace kx
