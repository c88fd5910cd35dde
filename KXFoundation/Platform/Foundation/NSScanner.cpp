// SPDX-License-Identifier: MIT

#include <algorithm>
#include <array>
#include <limits>

#include <KXFoundation/Platform/Foundation/NSScanner.h>

namespace kx {

namespace {

/// White space beyond ASCII as UTF-8: next line and the Unicode category Z.
constexpr std::array<std::string_view, 19> kWideSpaces = {
    "\u0085", "\u00A0", "\u1680", "\u2000", "\u2001", "\u2002", "\u2003", "\u2004", "\u2005", "\u2006",
    "\u2007", "\u2008", "\u2009", "\u200A", "\u2028", "\u2029", "\u202F", "\u205F", "\u3000"};

bool isAsciiSpace(char c) noexcept {
    return c == ' ' || (c >= '\t' && c <= '\r');
}

/// How many bytes of white space the text begins with, of one character; 0 if with another one.
std::size_t spaceLength(std::string_view text) noexcept {
    if (text.empty()) return 0;
    if (isAsciiSpace(text.front())) return 1;
    if (static_cast<unsigned char>(text.front()) < 0x80) return 0;
    const auto found =
        std::ranges::find_if(kWideSpaces, [&](std::string_view space) { return text.starts_with(space); });
    return found == kWideSpaces.end() ? 0 : found->size();
}

/// 16 for what is no hexadecimal digit.
unsigned hexDigit(char c) noexcept {
    if (c >= '0' && c <= '9') return static_cast<unsigned>(c - '0');
    const char lower = static_cast<char>(c | 0x20);
    return lower >= 'a' && lower <= 'f' ? static_cast<unsigned>(lower - 'a') + 10 : 16;
}

bool isDigit(char c) noexcept {
    return c >= '0' && c <= '9';
}

}  // namespace

NSScanner::NSScanner(std::string_view text) noexcept : text_(text) {
    moveTo(0);
}

void NSScanner::moveTo(std::size_t position) noexcept {
    position_ = position;
    if (position < solid_) return;  // what lies between is white space still
    solid_ = position;
    while (const std::size_t length = spaceLength(text_.substr(solid_))) solid_ += length;
}

void NSScanner::skipCharacter() noexcept {
    if (position_ == text_.size()) return;
    std::size_t next = position_ + 1;
    while (next < text_.size() && (static_cast<unsigned char>(text_[next]) & 0xC0) == 0x80) ++next;
    moveTo(next);
}

template <class Number>
bool NSScanner::scanHex(Number& value) noexcept {
    Number number = 0;
    std::size_t at = solid_;
    for (; at < text_.size(); ++at) {
        const unsigned digit = hexDigit(text_[at]);
        if (digit == 16) break;
        const bool fits = number <= std::numeric_limits<Number>::max() >> 4;
        number = fits ? static_cast<Number>(number << 4 | digit) : std::numeric_limits<Number>::max();
    }
    if (at == solid_) return false;
    value = number;
    moveTo(at);
    return true;
}

bool NSScanner::scanHexInt(std::uint32_t& value) noexcept {
    return scanHex(value);
}

bool NSScanner::scanHexLongLong(std::uint64_t& value) noexcept {
    return scanHex(value);
}

bool NSScanner::scanInt(std::int32_t& value) noexcept {
    std::size_t at = solid_;
    const bool hasSign = at < text_.size() && (text_[at] == '-' || text_[at] == '+');
    const bool isNegative = hasSign && text_[at] == '-';
    const std::size_t first = hasSign ? ++at : at;
    constexpr std::int64_t kBeyond = std::int64_t{1} << 31;
    std::int64_t number = 0;
    for (; at < text_.size() && isDigit(text_[at]); ++at)
        number = std::min(number * 10 + (text_[at] - '0'), kBeyond);
    if (at == first) return false;
    value = static_cast<std::int32_t>(isNegative ? -number : std::min(number, kBeyond - 1));
    moveTo(at);
    return true;
}

std::int32_t intValue(std::string_view text) noexcept {
    std::int32_t value = 0;
    NSScanner(text).scanInt(value);
    return value;
}

}  // namespace kx
