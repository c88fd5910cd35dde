#include <algorithm>

#include <unicode/ustring.h>

#include <KXFoundation/Platform/Foundation/UnicodeText.h>
#include <KXFoundation/Platform/Foundation/Utf16Text.h>

namespace kx {

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
    std::u16string upper(3 * text.size(), u'\0');  // no character grows further
    UErrorCode status = U_ZERO_ERROR;
    const auto size = u_strToUpper(upper.data(), static_cast<std::int32_t>(upper.size()), text.data(),
                                   static_cast<std::int32_t>(text.size()), "", &status);
    upper.resize(static_cast<std::size_t>(std::max(size, 0)));
    return upper;
}

std::u16string_view trimmed(std::u16string_view text) noexcept {
    while (!text.empty() && isWhitespaceOrNewline(text.front())) text.remove_prefix(1);
    while (!text.empty() && isWhitespaceOrNewline(text.back())) text.remove_suffix(1);
    return text;
}

}  // namespace kx
