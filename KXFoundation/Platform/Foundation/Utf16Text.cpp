// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Foundation/IcuModule.h>
#include <KXFoundation/Platform/Foundation/UnicodeText.h>
#include <KXFoundation/Platform/Foundation/Utf16Text.h>

namespace kx {

namespace {

char16_t upperAscii(char16_t unit) noexcept {
    return unit >= u'a' && unit <= u'z' ? static_cast<char16_t>(unit - u'a' + u'A') : unit;
}

}  // namespace

std::u16string utf16Of(std::string_view text) {
    std::u16string units;
    units.reserve(text.size());
    while (!text.empty()) {
        const char32_t codePoint = takeCodePoint(text);
        if (codePoint >= 0x10000) {
            units.push_back(static_cast<char16_t>(0xD7C0 + (codePoint >> 10)));
            units.push_back(static_cast<char16_t>(0xDC00 + (codePoint & 0x3FF)));
        } else {
            units.push_back(static_cast<char16_t>(codePoint));
        }
    }
    return units;
}

std::u16string upperCased(std::u16string_view text) {
    const bool isAscii = std::ranges::all_of(text, [](char16_t unit) { return unit < 0x80; });
    const IcuModule* const icu = isAscii ? nullptr : icuModule();
    std::u16string upper(text);
    if (!icu) {
        std::ranges::transform(upper, upper.begin(), upperAscii);
        return upper;
    }
    upper.resize(3 * text.size());  // no character grows further
    const auto size = icu->upperCase(text.data(), static_cast<std::int32_t>(text.size()), upper.data(),
                                     static_cast<std::int32_t>(upper.size()));
    upper.resize(static_cast<std::size_t>(size));
    return upper;
}

std::u16string_view trimmed(std::u16string_view text) noexcept {
    while (!text.empty() && isWhitespaceOrNewline(text.front())) text.remove_prefix(1);
    while (!text.empty() && isWhitespaceOrNewline(text.back())) text.remove_suffix(1);
    return text;
}

}  // namespace kx
