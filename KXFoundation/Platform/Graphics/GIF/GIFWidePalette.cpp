// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Graphics/GIF/GIFWidePalette.h>

#if defined(__x86_64__)

#include <immintrin.h>

#define KX_WIDE __attribute__((target("avx512f,avx512bw,avx512vbmi")))

namespace kx {

namespace {

constexpr std::size_t kStep = 64, kGroup = 16;

// One channel: 256 bytes looked up by 7 bits in each half, the eighth bit chooses.
struct Channel {
    __m512i quarter[4];
};

struct Block {
    __m512i pixels[4];
};

KX_WIDE inline Channel load(const std::array<std::uint8_t, 256>& bytes) noexcept {
    Channel channel;
    for (std::size_t i = 0; i < 4; ++i) channel.quarter[i] = _mm512_loadu_si512(bytes.data() + 64 * i);
    return channel;
}

KX_WIDE inline __m512i lookUp(const Channel& channel, __m512i indices, __mmask64 upperHalf) noexcept {
    const __m512i lower = _mm512_permutex2var_epi8(channel.quarter[0], indices, channel.quarter[1]);
    const __m512i upper = _mm512_permutex2var_epi8(channel.quarter[2], indices, channel.quarter[3]);
    return _mm512_mask_blend_epi8(upperHalf, lower, upper);
}

// Unpacking interleaves inside 128-bit lanes, so the groups of four indices change places first: then
// pixels[k] holds the pixels 16k to 16k + 15.
KX_WIDE inline Block colour(const Channel (&channels)[3], __m512i indices) noexcept {
    const __m512i order = _mm512_setr_epi32(0, 4, 8, 12, 1, 5, 9, 13, 2, 6, 10, 14, 3, 7, 11, 15);
    indices = _mm512_maskz_permutexvar_epi32(0xFFFF, order, indices);
    const __mmask64 upperHalf = _mm512_movepi8_mask(indices);
    const __m512i blue = lookUp(channels[0], indices, upperHalf);
    const __m512i green = lookUp(channels[1], indices, upperHalf);
    const __m512i red = lookUp(channels[2], indices, upperHalf);
    const __m512i alpha = _mm512_set1_epi8(-1);
    const __m512i blueGreen0 = _mm512_unpacklo_epi8(blue, green),
                  blueGreen1 = _mm512_unpackhi_epi8(blue, green);
    const __m512i redAlpha0 = _mm512_unpacklo_epi8(red, alpha), redAlpha1 = _mm512_unpackhi_epi8(red, alpha);
    return {{_mm512_unpacklo_epi16(blueGreen0, redAlpha0), _mm512_unpackhi_epi16(blueGreen0, redAlpha0),
             _mm512_unpacklo_epi16(blueGreen1, redAlpha1), _mm512_unpackhi_epi16(blueGreen1, redAlpha1)}};
}

// Writes the pixels whose bit is set.
KX_WIDE inline void store(std::uint8_t* pixels, const Block& block, __mmask64 wanted) noexcept {
    for (std::size_t k = 0; k < 4; ++k)
        _mm512_mask_storeu_epi32(pixels + 64 * k, static_cast<__mmask16>(wanted >> (kGroup * k)),
                                 block.pixels[k]);
}

KX_WIDE inline void storeAll(std::uint8_t* pixels, const Block& block) noexcept {
    for (std::size_t k = 0; k < 4; ++k) _mm512_storeu_si512(pixels + 64 * k, block.pixels[k]);
}

inline __mmask64 firstOf(std::size_t count) noexcept {
    return ~std::uint64_t{0} >> (kStep - count);
}

}  // namespace

bool GIFWidePalette::available() noexcept {
    return __builtin_cpu_supports("avx512f") && __builtin_cpu_supports("avx512bw") &&
           __builtin_cpu_supports("avx512vbmi");
}

KX_WIDE void GIFWidePalette::paint(const Channels& channels, std::uint8_t* pixels,
                                   std::span<const std::uint8_t> indices) noexcept {
    const Channel loaded[3] = {load(channels[0]), load(channels[1]), load(channels[2])};
    std::size_t i = 0;
    for (; i + kStep <= indices.size(); i += kStep)
        storeAll(pixels + 4 * i, colour(loaded, _mm512_loadu_si512(indices.data() + i)));
    if (i == indices.size()) return;
    const __mmask64 rest = firstOf(indices.size() - i);
    store(pixels + 4 * i, colour(loaded, _mm512_maskz_loadu_epi8(rest, indices.data() + i)), rest);
}

KX_WIDE void GIFWidePalette::paintOver(const Channels& channels, std::uint8_t* pixels,
                                       std::span<const std::uint8_t> indices,
                                       std::uint8_t transparent) noexcept {
    const Channel loaded[3] = {load(channels[0]), load(channels[1]), load(channels[2])};
    const __m512i nothing = _mm512_set1_epi8(static_cast<char>(transparent));
    for (std::size_t i = 0; i < indices.size(); i += kStep) {
        const __mmask64 there = indices.size() - i < kStep ? firstOf(indices.size() - i) : ~__mmask64{0};
        const __m512i block = _mm512_maskz_loadu_epi8(there, indices.data() + i);
        const __mmask64 wanted = _mm512_mask_cmpneq_epi8_mask(there, block, nothing);
        if (wanted != 0) store(pixels + 4 * i, colour(loaded, block), wanted);
    }
}

}  // namespace kx

#else

namespace kx {

bool GIFWidePalette::available() noexcept {
    return false;
}
void GIFWidePalette::paint(const Channels&, std::uint8_t*, std::span<const std::uint8_t>) noexcept {}
void GIFWidePalette::paintOver(const Channels&, std::uint8_t*, std::span<const std::uint8_t>,
                               std::uint8_t) noexcept {}

}  // namespace kx

#endif
