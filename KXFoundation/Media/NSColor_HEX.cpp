#include <algorithm>

#include <KXFoundation/Media/NSColor_HEX.h>
#include <KXFoundation/Platform/Foundation/Utf16Text.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>

namespace kx {

namespace {

constexpr std::size_t kLongestCode = 9;  // "0x#FF8800"

/// -1 for what is no digit.
constexpr int digit(char16_t unit) noexcept {
    if (unit >= u'0' && unit <= u'9') return unit - u'0';
    if (unit >= u'A' && unit <= u'F') return unit - u'A' + 10;
    return -1;
}

/// The digits at the start of the pair, behind white space.
unsigned scannedHex(std::u16string_view pair) noexcept {
    while (!pair.empty() && isWhitespaceOrNewline(pair.front())) pair.remove_prefix(1);
    unsigned value = 0;
    for (; !pair.empty() && digit(pair.front()) >= 0; pair.remove_prefix(1))
        value = 16 * value + static_cast<unsigned>(digit(pair.front()));
    return value;
}

double channel(std::u16string_view digits, std::size_t index) noexcept {
    return static_cast<float>(scannedHex(digits.substr(2 * index, 2))) / 255.0F;
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
