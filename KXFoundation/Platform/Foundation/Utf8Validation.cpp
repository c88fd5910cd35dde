#include <algorithm>
#include <cstddef>
#include <cstdint>

#include <KXFoundation/Platform/Foundation/Utf8Validation.h>

#if defined(__x86_64__) || defined(__i386__)
#define KX_HAS_SSSE3_CHOICE 1
#include <tmmintrin.h>
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

#ifdef KX_HAS_SSSE3_CHOICE

namespace {

/// Keiser and Lemire, "Validating UTF-8 in less than one instruction per byte", Software: Practice and
/// Experience 51 (2021). Every fault of two neighbouring bytes shows in three of their four halves. A table
/// for each of the three gives the faults that the half allows, one bit each; what all three allow is there.
/// The last bit, two continuations in a row, is no fault where a first byte of three or four stands two or
/// three places before.
class Utf8Blocks {
  public:
    [[gnu::target("ssse3")]] void take(__m128i block) noexcept {
        if (_mm_movemask_epi8(block) == 0 && lastWasAscii_) return;
        lastWasAscii_ = _mm_movemask_epi8(block) == 0;
        const __m128i before1 = _mm_alignr_epi8(block, last_, 15);
        const __m128i before2 = _mm_alignr_epi8(block, last_, 14);
        const __m128i before3 = _mm_alignr_epi8(block, last_, 13);
        const __m128i pairs =
            _mm_and_si128(_mm_and_si128(look(kFirstHigh, high(before1)), look(kFirstLow, low(before1))),
                          look(kSecondHigh, high(block)));
        const __m128i expected =
            _mm_or_si128(_mm_subs_epu8(before2, all(0xE0 - 0x80)), _mm_subs_epu8(before3, all(0xF0 - 0x80)));
        faults_ = _mm_or_si128(faults_, _mm_xor_si128(_mm_and_si128(expected, all(0x80)), pairs));
        last_ = block;
    }

    [[nodiscard]] bool valid() const noexcept {
        return _mm_movemask_epi8(_mm_cmpeq_epi8(faults_, _mm_setzero_si128())) == 0xFFFF;
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

    static __m128i all(int byte) noexcept { return _mm_set1_epi8(static_cast<char>(byte)); }
    static __m128i low(__m128i bytes) noexcept { return _mm_and_si128(bytes, all(0x0F)); }
    static __m128i high(__m128i bytes) noexcept { return low(_mm_srli_epi16(bytes, 4)); }
    [[gnu::target("ssse3")]] static __m128i look(const std::uint8_t (&table)[16], __m128i indices) noexcept {
        return _mm_shuffle_epi8(_mm_load_si128(reinterpret_cast<const __m128i*>(table)), indices);
    }

    __m128i last_ = _mm_setzero_si128();
    __m128i faults_ = _mm_setzero_si128();
    bool lastWasAscii_ = true;
};

[[gnu::target("ssse3")]] bool isUtf8ByBlocks(std::string_view text) noexcept {
    const auto load = [](const char* at) { return _mm_loadu_si128(reinterpret_cast<const __m128i*>(at)); };
    Utf8Blocks blocks;
    std::size_t at = 0;
    for (; at + 16 <= text.size(); at += 16) blocks.take(load(text.data() + at));
    char rest[16] = {};  // ends in a zero at least, before which every character must be complete
    std::copy(text.begin() + static_cast<std::ptrdiff_t>(at), text.end(), rest);
    blocks.take(load(rest));
    return blocks.valid();
}

}  // namespace

bool isUtf8(std::string_view text) noexcept {
    static const bool hasBlocks = __builtin_cpu_supports("ssse3");
    return hasBlocks ? isUtf8ByBlocks(text) : isUtf8ByCharacters(text);
}

#else

bool isUtf8(std::string_view text) noexcept {
    return isUtf8ByCharacters(text);
}

#endif

}  // namespace kx
