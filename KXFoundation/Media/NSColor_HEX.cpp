// SPDX-License-Identifier: MIT

#include <algorithm>
#include <array>

#include <KXFoundation/Media/NSColor_HEX.h>
#include <KXFoundation/Platform/Foundation/NSScanner.h>
#include <KXFoundation/Platform/Foundation/Utf16Text.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>

namespace kx {

namespace {

constexpr std::size_t kLongestCode = 9;  // "0x#FF8800"

/// As the scanner reads it: what is beyond ASCII is white space or no digit.
constexpr char asciiOf(char16_t unit) noexcept {
    if (isWhitespaceOrNewline(unit)) return ' ';
    return unit < 0x80 ? static_cast<char>(unit) : '?';
}

double channel(std::u16string_view digits, std::size_t index) noexcept {
    const std::array pair = {asciiOf(digits[2 * index]), asciiOf(digits[2 * index + 1])};
    std::uint32_t value = 0;
    NSScanner(std::string_view(pair.data(), pair.size())).scanHexInt(value);
    return static_cast<float>(value) / 255.0F;
}

}  // namespace

std::shared_ptr<NSColor> NSColor_HEX::colorWithHexString(std::optional<std::string_view> text, double alpha) {
    if (!text) return NSColor::clearColor();
    const std::u16string units = utf16Of(*text);
    const std::u16string_view code = trimmed(units);
    if (code.size() > kLongestCode) return NSColor::clearColor();
    const std::u16string upper = upperCased(code);
    std::u16string_view digits = upper;
    if (digits.size() <= 5) return NSColor::clearColor();
    if (digits.starts_with(u"0X")) digits.remove_prefix(2);
    if (digits.starts_with(u'#')) digits.remove_prefix(1);
    if (digits.size() != 6) return NSColor::clearColor();
    return NSColor::colorWithRed(channel(digits, 0), channel(digits, 1), channel(digits, 2),
                                 std::clamp(alpha, 0.0, 1.0));
}

}  // namespace kx
