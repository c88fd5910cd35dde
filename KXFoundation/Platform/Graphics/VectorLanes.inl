// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstring>

#include <immintrin.h>

/// Registers of integers under one set of names, so that a loop over pixels is written once for all widths.
/// Unpacking interleaves, and packing joins, inside lanes of 128 bits.
///
/// A file that includes this may be compiled for one kind of machine, and what it makes must not reach other
/// files: hence the unnamed namespace, and nothing from the standard library that is more than a macro.
/// Private to Graphics.
namespace kx {

namespace {

/// SSE2, which every 64-bit x86 has.
struct Lanes128 {
    using Vector = __m128i;
    static constexpr std::size_t kBytes = 16;

    static Vector load(const void* from) { return _mm_loadu_si128(static_cast<const Vector*>(from)); }
    static void store(void* to, Vector v) { _mm_storeu_si128(static_cast<Vector*>(to), v); }
    /// Past the caches; `to` is a multiple of kBytes.
    static void stream(void* to, Vector v) { _mm_stream_si128(static_cast<Vector*>(to), v); }
    static void finishStreaming() { _mm_sfence(); }
    static Vector all(std::int32_t value) { return _mm_set1_epi32(value); }
    static Vector both(Vector a, Vector b) { return _mm_or_si128(a, b); }
    static Vector common(Vector a, Vector b) { return _mm_and_si128(a, b); }
    static Vector lowBytes(Vector a, Vector b) { return _mm_unpacklo_epi8(a, b); }
    static Vector highBytes(Vector a, Vector b) { return _mm_unpackhi_epi8(a, b); }
    static Vector lowWords(Vector a, Vector b) { return _mm_unpacklo_epi16(a, b); }
    static Vector highWords(Vector a, Vector b) { return _mm_unpackhi_epi16(a, b); }
    static Vector upperHalf(Vector v) { return _mm_srli_si128(v, 8); }
    /// Products of 16-bit values, each two neighbours' added.
    static Vector multiply(Vector values, Vector weights) { return _mm_madd_epi16(values, weights); }
    static Vector add(Vector a, Vector b) { return _mm_add_epi32(a, b); }
    static Vector addWords(Vector a, Vector b) { return _mm_add_epi16(a, b); }
    /// Shifted right and rounded.
    static Vector rounded(Vector sums, int shift) {
        return _mm_sra_epi32(add(sums, all(1 << shift >> 1)), _mm_cvtsi32_si128(shift));
    }
    static Vector wordsShiftedRight(Vector v, int bits) { return _mm_srli_epi16(v, bits); }
    static Vector shiftedRight(Vector v, int bits) { return _mm_srli_epi32(v, bits); }
    static Vector shiftedLeft(Vector v, int bits) { return _mm_slli_epi32(v, bits); }
    static Vector toWords(Vector a, Vector b) { return _mm_packs_epi32(a, b); }
    static Vector toBytes(Vector a, Vector b) { return _mm_packus_epi16(a, b); }
    static Vector leastBytes(Vector a, Vector b) { return _mm_min_epu8(a, b); }

    static Vector colourBytes(Vector pixels) { return common(pixels, all(0x00FFFFFF)); }
    /// The alpha of each pixel in all of its bytes.
    static Vector spreadAlpha(Vector pixels) {
        const Vector alpha = shiftedRight(pixels, 24);
        const Vector twice = both(alpha, shiftedLeft(alpha, 8));
        return both(twice, shiftedLeft(twice, 16));
    }
    /// Colours of new pixels, none above the old pixel's alpha, with that alpha; `alpha` is it in its place.
    static Vector heldToAlpha(Vector colours, Vector old, Vector alpha) {
        return both(leastBytes(colours, colourBytes(spreadAlpha(old))), alpha);
    }
    /// The same for one 32-bit value in all three colours.
    static Vector greyPixels(Vector values, Vector old, Vector alpha) {
        const Vector inWords = toWords(values, values), inBytes = toBytes(inWords, inWords);
        const Vector twice = lowBytes(inBytes, inBytes);
        return heldToAlpha(lowWords(twice, twice), old, alpha);
    }

    /// Words of what lowBytes (first) and highBytes took apart, in the order it had.
    static void storeInOrder(std::int16_t* to, Vector first, Vector second) {
        store(to, first);
        store(to + kBytes / 2, second);
    }
    static Vector bytesInOrder(Vector first, Vector second) { return toBytes(first, second); }
    /// Two pixels of words, channel by channel.
    static Vector pixelPairs(Vector pixels) { return lowWords(pixels, upperHalf(pixels)); }
    static Vector pairWeights(const std::int16_t* weights) {
        std::int32_t two;
        std::memcpy(&two, weights, sizeof two);
        return all(two);
    }
    static void storePixel(std::int16_t* to, Vector sums, int shift) {
        const Vector pixel = rounded(sums, shift);
        _mm_storel_epi64(reinterpret_cast<Vector*>(to), toWords(pixel, pixel));
    }
};

#if defined(__AVX2__)

/// Two lanes.
struct Lanes256 {
    using Vector = __m256i;
    static constexpr std::size_t kBytes = 32;

    static Vector load(const void* from) { return _mm256_loadu_si256(static_cast<const Vector*>(from)); }
    static void store(void* to, Vector v) { _mm256_storeu_si256(static_cast<Vector*>(to), v); }
    static void stream(void* to, Vector v) { _mm256_stream_si256(static_cast<Vector*>(to), v); }
    static void finishStreaming() { _mm_sfence(); }
    static Vector all(std::int32_t value) { return _mm256_set1_epi32(value); }
    static Vector both(Vector a, Vector b) { return _mm256_or_si256(a, b); }
    static Vector common(Vector a, Vector b) { return _mm256_and_si256(a, b); }
    static Vector lowBytes(Vector a, Vector b) { return _mm256_unpacklo_epi8(a, b); }
    static Vector highBytes(Vector a, Vector b) { return _mm256_unpackhi_epi8(a, b); }
    static Vector lowWords(Vector a, Vector b) { return _mm256_unpacklo_epi16(a, b); }
    static Vector highWords(Vector a, Vector b) { return _mm256_unpackhi_epi16(a, b); }
    static Vector upperHalf(Vector v) { return _mm256_srli_si256(v, 8); }
    static Vector multiply(Vector values, Vector weights) { return _mm256_madd_epi16(values, weights); }
    static Vector add(Vector a, Vector b) { return _mm256_add_epi32(a, b); }
    static Vector addWords(Vector a, Vector b) { return _mm256_add_epi16(a, b); }
    static Vector rounded(Vector sums, int shift) {
        return _mm256_sra_epi32(add(sums, all(1 << shift >> 1)), _mm_cvtsi32_si128(shift));
    }
    static Vector wordsShiftedRight(Vector v, int bits) { return _mm256_srli_epi16(v, bits); }
    static Vector shiftedRight(Vector v, int bits) { return _mm256_srli_epi32(v, bits); }
    static Vector shiftedLeft(Vector v, int bits) { return _mm256_slli_epi32(v, bits); }
    static Vector toWords(Vector a, Vector b) { return _mm256_packs_epi32(a, b); }
    static Vector toBytes(Vector a, Vector b) { return _mm256_packus_epi16(a, b); }
    static Vector leastBytes(Vector a, Vector b) { return _mm256_min_epu8(a, b); }

    static Vector colourBytes(Vector pixels) { return common(pixels, all(0x00FFFFFF)); }
    static Vector spreadAlpha(Vector pixels) {
        const Vector order = _mm256_setr_epi8(3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15,  //
                                              3, 3, 3, 3, 7, 7, 7, 7, 11, 11, 11, 11, 15, 15, 15, 15);
        return _mm256_shuffle_epi8(pixels, order);
    }
    static Vector heldToAlpha(Vector colours, Vector old, Vector alpha) {
        return both(leastBytes(colours, colourBytes(spreadAlpha(old))), alpha);
    }
    static Vector greyPixels(Vector values, Vector old, Vector alpha) {
        const Vector held = _mm256_min_epi32(_mm256_max_epi32(values, all(0)), shiftedRight(old, 24));
        const Vector order = _mm256_setr_epi8(0, 0, 0, -1, 4, 4, 4, -1, 8, 8, 8, -1, 12, 12, 12, -1,  //
                                              0, 0, 0, -1, 4, 4, 4, -1, 8, 8, 8, -1, 12, 12, 12, -1);
        return both(_mm256_shuffle_epi8(held, order), alpha);
    }

    static void storeInOrder(std::int16_t* to, Vector first, Vector second) {
        store(to, _mm256_permute2x128_si256(first, second, 0x20));
        store(to + kBytes / 2, _mm256_permute2x128_si256(first, second, 0x31));
    }
    static Vector bytesInOrder(Vector first, Vector second) {
        return _mm256_permute4x64_epi64(toBytes(first, second), 0xD8);
    }
    /// Four pixels: two in each lane.
    static Vector pixelPairs(Vector pixels) {
        const Vector order = _mm256_setr_epi8(0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15,  //
                                              0, 1, 8, 9, 2, 3, 10, 11, 4, 5, 12, 13, 6, 7, 14, 15);
        return _mm256_shuffle_epi8(pixels, order);
    }
    static Vector pairWeights(const std::int16_t* weights) {
        const __m128i four = _mm_loadl_epi64(reinterpret_cast<const __m128i*>(weights));
        return _mm256_permutevar8x32_epi32(_mm256_castsi128_si256(four),
                                           _mm256_setr_epi32(0, 0, 0, 0, 1, 1, 1, 1));
    }
    static void storePixel(std::int16_t* to, Vector sums, int shift) {
        Lanes128::storePixel(
            to, Lanes128::add(_mm256_castsi256_si128(sums), _mm256_extracti128_si256(sums, 1)), shift);
    }
};

#endif

}  // namespace

}  // namespace kx
