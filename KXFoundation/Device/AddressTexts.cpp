// SPDX-License-Identifier: MIT

// MAC and IPv4 addresses between text and number.
#include <algorithm>
#include <array>
#include <charconv>
#include <utility>

#include <KXFoundation/Device/KXNetworkUtils.h>
#include <KXFoundation/Platform/Foundation/NSScanner.h>

namespace kx {

namespace {

constexpr std::array<unsigned, 6> kShifts = {40, 32, 24, 16, 8, 0};

/// A field's value as upper-case hexadecimal digits, at least two.
class FieldText {
  public:
    explicit FieldText(std::uint32_t value) noexcept {
        const auto end = std::to_chars(digits_.data(), digits_.data() + digits_.size(), value, 16).ptr;
        length_ = static_cast<std::size_t>(end - digits_.data());
        if (length_ == 1) digits_[1] = std::exchange(digits_[0], '0'), length_ = 2;
        for (char& digit : digits_) {
            if (digit >= 'a') digit = static_cast<char>(digit - 'a' + 'A');
        }
    }
    [[nodiscard]] std::string_view text() const noexcept { return {digits_.data(), length_}; }

  private:
    std::array<char, 8> digits_{};
    std::size_t length_;
};

/// Calls `take(value, hasSeparator)` for every field of a MAC text.
template <class Take>
void forEachField(std::string_view mac, const Take& take) noexcept(noexcept(take(0U, true))) {
    NSScanner scanner(mac);
    while (!scanner.isAtEnd()) {
        std::uint32_t value = 0;
        scanner.scanHexInt(value);
        const bool hasSeparator = !scanner.isAtLastPosition();
        scanner.skipCharacter();
        take(value, hasSeparator);
    }
}

/// Takes what stands before the next separator off `text`.
std::string_view takeField(std::string_view& text, char separator) noexcept {
    const std::size_t end = std::min(text.find(separator), text.size());
    const std::string_view field = text.substr(0, end);
    text.remove_prefix(std::min(end + 1, text.size()));
    return field;
}

bool contains(std::string_view text, char c) noexcept {
    return text.find(c) != text.npos;
}

}  // namespace

std::string KXNetworkUtils::formatMac(std::optional<std::string_view> mac) {
    return formatMACAddress(mac, ":");
}

std::string KXNetworkUtils::formatMACAddress(std::optional<std::string_view> mac,
                                             std::optional<std::string_view> separator) {
    if (!mac) return {};
    const std::string_view between = separator.value_or("");
    std::size_t length = 0;
    forEachField(*mac, [&](std::uint32_t value, bool hasSeparator) {
        length += FieldText(value).text().size() + (hasSeparator ? between.size() : 0);
    });
    std::string text;
    text.reserve(length);
    forEachField(*mac, [&](std::uint32_t value, bool hasSeparator) {
        text += FieldText(value).text();
        if (hasSeparator) text += between;
    });
    return text;
}

std::string KXNetworkUtils::formatMACInteger(std::int64_t value, std::optional<std::string_view> separator) {
    const std::string_view between = separator.value_or("");
    std::string text;
    text.reserve(kShifts.size() * 2 + (kShifts.size() - 1) * between.size());
    for (const unsigned shift : kShifts) {
        if (shift != kShifts.front()) text += between;
        text += FieldText(static_cast<std::uint8_t>(value >> shift)).text();
    }
    return text;
}

std::int64_t KXNetworkUtils::macStringToInteger(std::optional<std::string_view> mac) noexcept {
    std::string_view rest = mac.value_or("");
    const char separator = contains(rest, ':') ? ':' : '-';
    if (std::ranges::count(rest, separator) + 1 < static_cast<std::ptrdiff_t>(kShifts.size())) return 0;
    std::uint64_t sum = 0;
    for (const unsigned shift : kShifts) {
        std::uint64_t field = 0;
        NSScanner(takeField(rest, separator)).scanHexLongLong(field);
        sum += field << shift;
    }
    return static_cast<std::int64_t>(sum);
}

std::int32_t KXNetworkUtils::ipStringToInteger(std::optional<std::string_view> text) noexcept {
    std::string_view rest = text.value_or("");
    if (std::ranges::count(rest, '.') != 3) return 0;
    std::uint32_t sum = 0;
    for (const unsigned shift : {24U, 16U, 8U, 0U})
        sum += static_cast<std::uint32_t>(intValue(takeField(rest, '.'))) << shift;
    return static_cast<std::int32_t>(sum);
}

}  // namespace kx
