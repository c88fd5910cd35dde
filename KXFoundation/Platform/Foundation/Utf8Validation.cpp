// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstddef>
#include <cstdint>

#include <KXFoundation/Platform/Foundation/Utf8Validation.h>

#if defined(__x86_64__) || defined(__i386__)
#define KX_HAS_AVX2_CHOICE 1
#include <immintrin.h>
#endif

#include <KXFoundation/Platform/Foundation/UnicodeText.h>

namespace kx {

bool isUtf8ByCharacters(std::string_view text) noexcept {
    while (!text.empty()) {
        const std::size_t before = text.size();
        if (takeCodePoint(text) == kReplacementCharacter && before - text.size() == 1) return false;
    }
    return true;
}

#ifdef KX_HAS_AVX2_CHOICE

namespace {

/// Keiser and Lemire, "Validating UTF-8 in less than one instruction per byte", Software: Practice and
/// Experience 51 (2021). Every fault of two neighbouring bytes shows in three of their four halves. A table
/// for each of the three gives the faults that the half allows, one bit each; what all three allow is there.
/// The last bit, two continuations in a row, is no fault where a first byte of three or four stands two or
/// three places before.
class Utf8Blocks {
  public:
    static constexpr std::size_t kSize = 32;

    [[gnu::target("avx2")]] void take(__m256i block) noexcept {
        const __m256i seam = _mm256_permute2x128_si256(last_, block, 0x21);
        const __m256i before1 = _mm256_alignr_epi8(block, seam, 15);
        const __m256i before2 = _mm256_alignr_epi8(block, seam, 14);
        const __m256i before3 = _mm256_alignr_epi8(block, seam, 13);
        const __m256i pairs =
            _mm256_and_si256(_mm256_and_si256(look(kFirstHigh, high(before1)), look(kFirstLow, low(before1))),
                             look(kSecondHigh, high(block)));
        const __m256i expected = _mm256_or_si256(_mm256_subs_epu8(before2, all(0xE0 - 0x80)),
                                                 _mm256_subs_epu8(before3, all(0xF0 - 0x80)));
        faults_ = _mm256_or_si256(faults_, _mm256_xor_si256(_mm256_and_si256(expected, all(0x80)), pairs));
        last_ = block;
    }

    /// Two blocks, of which many are ASCII alone in some texts and none in others: a jump for each single one
    /// would be guessed wrong in mixed text.
    [[gnu::target("avx2")]] void takeTwo(const char* text) noexcept {
        const __m256i first = load(text);
        const __m256i second = load(text + kSize);
        if (_mm256_movemask_epi8(_mm256_or_si256(_mm256_or_si256(first, second), last_)) == 0) return;
        take(first);
        take(second);
    }

    [[gnu::target("avx2")]] static __m256i load(const char* at) noexcept {
        return _mm256_loadu_si256(reinterpret_cast<const __m256i*>(at));
    }

    [[gnu::target("avx2")]] [[nodiscard]] bool valid() const noexcept {
        return _mm256_testz_si256(faults_, faults_) != 0;
    }

  private:
    enum : std::uint8_t {
        kShort = 1,              // a first byte, then none that continues it
        kLong = 2,               // ASCII, then a continuation
        kOverlong3 = 4,          // E0, then less than A0
        kLarge = 8,              // F4 and more, then 90 and more
        kSurrogate = 16,         // ED, then A0 and more
        kOverlong2 = 32,         // C0 or C1
        kLargeOrOverlong4 = 64,  // F5 and more, then 8x; F0, then less than 90
        kContinuations = 128,
        kAnyLow = kShort | kLong | kContinuations,
    };
    static constexpr std::uint8_t kLow5 = kAnyLow | kLarge | kLargeOrOverlong4;
    static constexpr std::uint8_t kSecond = kLong | kOverlong2 | kContinuations;

    alignas(16) static constexpr std::uint8_t kFirstHigh[16] = {kLong,
                                                                kLong,
                                                                kLong,
                                                                kLong,
                                                                kLong,
                                                                kLong,
                                                                kLong,
                                                                kLong,
                                                                kContinuations,
                                                                kContinuations,
                                                                kContinuations,
                                                                kContinuations,
                                                                kShort | kOverlong2,
                                                                kShort,
                                                                kShort | kOverlong3 | kSurrogate,
                                                                kShort | kLarge | kLargeOrOverlong4};
    alignas(16) static constexpr std::uint8_t kFirstLow[16] = {
        kAnyLow | kOverlong2 | kOverlong3 | kLargeOrOverlong4,
        kAnyLow | kOverlong2,
        kAnyLow,
        kAnyLow,
        kAnyLow | kLarge,
        kLow5,
        kLow5,
        kLow5,
        kLow5,
        kLow5,
        kLow5,
        kLow5,
        kLow5,
        kLow5 | kSurrogate,
        kLow5,
        kLow5};
    alignas(16) static constexpr std::uint8_t kSecondHigh[16] = {kShort,
                                                                 kShort,
                                                                 kShort,
                                                                 kShort,
                                                                 kShort,
                                                                 kShort,
                                                                 kShort,
                                                                 kShort,
                                                                 kSecond | kOverlong3 | kLargeOrOverlong4,
                                                                 kSecond | kOverlong3 | kLarge,
                                                                 kSecond | kSurrogate | kLarge,
                                                                 kSecond | kSurrogate | kLarge,
                                                                 kShort,
                                                                 kShort,
                                                                 kShort,
                                                                 kShort};

    [[gnu::target("avx2")]] static __m256i all(int byte) noexcept {
        return _mm256_set1_epi8(static_cast<char>(byte));
    }
    [[gnu::target("avx2")]] static __m256i low(__m256i bytes) noexcept {
        return _mm256_and_si256(bytes, all(0x0F));
    }
    [[gnu::target("avx2")]] static __m256i high(__m256i bytes) noexcept {
        return low(_mm256_srli_epi16(bytes, 4));
    }
    [[gnu::target("avx2")]] static __m256i look(const std::uint8_t (&table)[16], __m256i indices) noexcept {
        const auto half = _mm_load_si128(reinterpret_cast<const __m128i*>(table));
        return _mm256_shuffle_epi8(_mm256_broadcastsi128_si256(half), indices);
    }

    __m256i last_ = {};
    __m256i faults_ = {};
};

[[gnu::target("avx2")]] bool isUtf8ByBlocks(std::string_view text) noexcept {
    Utf8Blocks blocks;
    std::size_t at = 0;
    for (; at + 2 * blocks.kSize <= text.size(); at += 2 * blocks.kSize) blocks.takeTwo(text.data() + at);
    // Ends in a zero at least, before which every character must be complete.
    char rest[3 * Utf8Blocks::kSize] = {};
    std::copy(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), rest);
    blocks.takeTwo(rest);
    blocks.take(Utf8Blocks::load(rest + 2 * blocks.kSize));
    return blocks.valid();
}

}  // namespace

bool isUtf8(std::string_view text) noexcept {
    static const bool hasBlocks = __builtin_cpu_supports("avx2");
    return hasBlocks ? isUtf8ByBlocks(text) : isUtf8ByCharacters(text);
}

#else

bool isUtf8(std::string_view text) noexcept {
    return isUtf8ByCharacters(text);
}

#endif

}  // namespace kx
