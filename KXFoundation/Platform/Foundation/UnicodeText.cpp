// SPDX-License-Identifier: MIT

#include <cstddef>

#include <KXFoundation/Platform/Foundation/UnicodeText.h>

namespace kx {

namespace {

bool isScalarValue(char32_t c) noexcept {
    return c < 0xD800 || (c > 0xDFFF && c <= 0x10FFFF);
}

}  // namespace

char32_t takeCodePoint(std::string_view& text) noexcept {
    const auto byte = [&](std::size_t i) { return static_cast<unsigned char>(text[i]); };
    const unsigned char first = byte(0);
    const std::size_t length = first < 0x80 ? 1 : first < 0xC2 ? 0 : first < 0xE0 ? 2 : first < 0xF0 ? 3 : 4;
    static constexpr char32_t kSmallest[] = {0, 0, 0x80, 0x800, 0x10000};
    char32_t codePoint = length <= 1 ? first : first & (0x7Fu >> length);
    bool valid = length != 0 && length <= text.size();
    for (std::size_t i = 1; valid && i < length; ++i) {
        valid = (byte(i) & 0xC0) == 0x80;
        codePoint = (codePoint << 6) | (byte(i) & 0x3Fu);
    }
    valid = valid && codePoint >= kSmallest[length] && isScalarValue(codePoint);
    text.remove_prefix(valid ? length : 1);
    return valid ? codePoint : kReplacementCharacter;
}

void appendCodePoint(std::string& text, char32_t codePoint) {
    if (!isScalarValue(codePoint)) codePoint = kReplacementCharacter;
    const auto push = [&](char32_t bits) { text.push_back(static_cast<char>(bits)); };
    const auto continuation = [&](int shift) { push(0x80 | ((codePoint >> shift) & 0x3F)); };
    if (codePoint < 0x80) return push(codePoint);
    if (codePoint < 0x800) {
        push(0xC0 | (codePoint >> 6));
    } else if (codePoint < 0x10000) {
        push(0xE0 | (codePoint >> 12));
        continuation(6);
    } else {
        push(0xF0 | (codePoint >> 18));
        continuation(12);
        continuation(6);
    }
    continuation(0);
}

}  // namespace kx
