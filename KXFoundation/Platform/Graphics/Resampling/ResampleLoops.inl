// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Graphics/Resampling/ResampleKernels.h>
#include <KXFoundation/Platform/Graphics/VectorLanes.inl>

/// The loops of ResampleKernels over registers of any width; see VectorLanes.inl for what a file that
/// includes this must heed. Two 16-bit values and their weights are multiplied and added by one instruction,
/// so everything goes in pairs: rows of a column, pixels of a row.
namespace kx {

namespace {

template <class Lanes>
struct ResampleLoops {
    using V = typename Lanes::Vector;
    static constexpr std::size_t kBytes = Lanes::kBytes;

    static void blendBytes(const std::uint8_t* const* rows, const std::int16_t* weights, std::size_t rowCount,
                           int shift, std::size_t values, std::int32_t* sums, std::int16_t* to) {
        if (values < kBytes) {
            return kPlainResampleKernels.blendBytes(rows, weights, rowCount, shift, values, sums, to);
        }
        const std::size_t whole = values / kBytes * kBytes;
        for (std::size_t from = 0; from < whole; from += kStrip)
            blendStrip({rows, weights, rowCount}, shift, from, least(from + kStrip, whole), sums, to);
        if (whole < values) blendStrip({rows, weights, rowCount}, shift, values - kBytes, values, sums, to);
    }

    static void sumBytes(const std::uint8_t* rows, std::size_t rowCount, std::size_t values,
                         std::int16_t* to) {
        if (values < kBytes) return kPlainResampleKernels.sumBytes(rows, rowCount, values, to);
        for (std::size_t i = 0; i + kBytes <= values; i += kBytes)
            sumStep(rows + i, rowCount, values, to + i);
        const std::size_t last = values - kBytes;
        sumStep(rows + last, rowCount, values, to + last);
    }

    static void blendWords(const std::int16_t* const* rows, const std::int16_t* weights, std::size_t rowCount,
                           int shift, std::size_t values, std::int16_t* to) {
        for (std::size_t i = 0; i < values; i += kBytes / 2) {
            V low = Lanes::all(0), high = Lanes::all(0);
            for (std::size_t k = 0; k < rowCount; k += 2) {
                const V a = Lanes::load(rows[k] + i), b = Lanes::load(rows[k + 1] + i);
                const V both = Lanes::all(pairOf(weights + k));
                low = Lanes::add(low, Lanes::multiply(Lanes::lowWords(a, b), both));
                high = Lanes::add(high, Lanes::multiply(Lanes::highWords(a, b), both));
            }
            Lanes::store(to + i, words(low, high, shift));
        }
    }

    static void shrinkRow(const std::int16_t* row, const std::uint32_t* firsts, const std::int16_t* weights,
                          std::size_t weightCount, int shift, std::size_t pixels, std::int16_t* to) {
        constexpr std::size_t kPixels = kBytes / 8;
        for (std::size_t x = 0; x < pixels; ++x, weights += weightCount, to += 4) {
            const std::int16_t* from = row + std::size_t{firsts[x]} * 4;
            V sum = Lanes::all(0);
            for (std::size_t k = 0; k < weightCount; k += kPixels) {
                const V pairs = Lanes::pixelPairs(Lanes::load(from + 4 * k));
                sum = Lanes::add(sum, Lanes::multiply(pairs, Lanes::pairWeights(weights + k)));
            }
            Lanes::storePixel(to, sum, shift);
        }
    }

    static void storePixels(const std::int16_t* words, std::size_t pixels, std::uint32_t* to) {
        constexpr std::size_t kStep = kBytes / 4;
        if (pixels < kStep) return kPlainResampleKernels.storePixels(words, pixels, to);
        for (std::size_t x = 0; x + kStep <= pixels; x += kStep) storeStep(words + 4 * x, to + x);
        storeStep(words + 4 * (pixels - kStep), to + pixels - kStep);
    }

    static constexpr ResampleKernels kKernels{blendBytes, sumBytes, blendWords, shrinkRow, storePixels};

  private:
    /// Sums of this many bytes stay in the first-level cache while rows are added to them.
    static constexpr std::size_t kStrip = 4096;
    /// The next bytes of a row, asked for early: half as long again without.
    static constexpr std::size_t kAhead = 1024;
    /// As many rows are read at once: more streams than that outrun the machine's prefetching.
    static constexpr std::size_t kGroup = 8;

    struct Rows {
        const std::uint8_t* const* rows;
        const std::int16_t* weights;
        std::size_t count;
    };

    static std::size_t least(std::size_t a, std::size_t b) { return a < b ? a : b; }

    static std::int32_t pairOf(const std::int16_t* weights) {
        std::int32_t both;
        std::memcpy(&both, weights, sizeof both);
        return both;
    }

    static void sumStep(const std::uint8_t* rows, std::size_t rowCount, std::size_t values,
                        std::int16_t* to) {
        const V zero = Lanes::all(0);
        V low = zero, high = zero;
        for (std::size_t k = 0; k < rowCount; ++k, rows += values) {
            __builtin_prefetch(rows + kAhead);
            const V bytes = Lanes::load(rows);
            low = Lanes::addWords(low, Lanes::lowBytes(bytes, zero));
            high = Lanes::addWords(high, Lanes::highBytes(bytes, zero));
        }
        Lanes::storeInOrder(to, low, high);
    }

    static void storeStep(const std::int16_t* words, std::uint32_t* to) {
        const V pixels = Lanes::bytesInOrder(Lanes::load(words), Lanes::load(words + kBytes / 2));
        Lanes::store(to, Lanes::leastBytes(pixels, Lanes::spreadAlpha(pixels)));
    }

    static V words(V low, V high, int shift) {
        return Lanes::toWords(Lanes::rounded(low, shift), Lanes::rounded(high, shift));
    }

    static void blendStrip(Rows all, int shift, std::size_t from, std::size_t end, std::int32_t* sums,
                           std::int16_t* to) {
        for (std::size_t k = 0; k < all.count; k += kGroup) {
            const Rows group{all.rows + k, all.weights + k, least(kGroup, all.count - k)};
            const bool isLast = k + kGroup >= all.count;
            const auto add = k == 0 ? (isLast ? addGroup<true, true> : addGroup<true, false>)
                                    : (isLast ? addGroup<false, true> : addGroup<false, false>);
            add(group, shift, from, end, sums, to);
        }
    }

    /// Of kBytes values, a quarter in each register. Named ones: an array would live in memory.
    struct Sums {
        V a, b, c, d;
    };

    static Sums loadSums(const std::int32_t* from) {
        return {Lanes::load(from), Lanes::load(from + kBytes / 4), Lanes::load(from + kBytes / 2),
                Lanes::load(from + kBytes / 4 * 3)};
    }

    static void storeSums(std::int32_t* to, const Sums& sums) {
        Lanes::store(to, sums.a);
        Lanes::store(to + kBytes / 4, sums.b);
        Lanes::store(to + kBytes / 2, sums.c);
        Lanes::store(to + kBytes / 4 * 3, sums.d);
    }

    static void addPair(Sums& sums, V first, V second, V weights) {
        const V zero = Lanes::all(0);
        const V low = Lanes::lowBytes(first, second), high = Lanes::highBytes(first, second);
        sums.a = Lanes::add(sums.a, Lanes::multiply(Lanes::lowBytes(low, zero), weights));
        sums.b = Lanes::add(sums.b, Lanes::multiply(Lanes::highBytes(low, zero), weights));
        sums.c = Lanes::add(sums.c, Lanes::multiply(Lanes::lowBytes(high, zero), weights));
        sums.d = Lanes::add(sums.d, Lanes::multiply(Lanes::highBytes(high, zero), weights));
    }

    /// Adds the rows to the sums, which begin with the first group and become words with the last.
    template <bool kFirst, bool kLast>
    static void addGroup(Rows group, int shift, std::size_t from, std::size_t end, std::int32_t* sums,
                         std::int16_t* to) {
        const V zero = Lanes::all(0);
        for (std::size_t i = from; i < end; i += kBytes, sums += kBytes) {
            Sums sum = kFirst ? Sums{zero, zero, zero, zero} : loadSums(sums);
            for (std::size_t k = 0; k < group.count; k += 2) {
                addPair(sum, Lanes::load(group.rows[k] + i), Lanes::load(group.rows[k + 1] + i),
                        Lanes::all(pairOf(group.weights + k)));
            }
            if (!kLast) {
                storeSums(sums, sum);
                continue;
            }
            Lanes::storeInOrder(to + i, words(sum.a, sum.b, shift), words(sum.c, sum.d, shift));
        }
    }
};

}  // namespace

}  // namespace kx
