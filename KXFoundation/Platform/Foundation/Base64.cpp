// SPDX-License-Identifier: MIT

#include <array>
#include <cstdint>

#include <KXFoundation/Platform/Foundation/Base64.h>

namespace kx {

namespace {

constexpr std::string_view kDigits = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789+/";
constexpr std::int8_t kNoDigit = -1;

constexpr auto kValues = [] {
    std::array<std::int8_t, 256> values{};
    values.fill(kNoDigit);
    for (std::size_t i = 0; i < kDigits.size(); ++i) {
        values[static_cast<unsigned char>(kDigits[i])] = static_cast<std::int8_t>(i);
    }
    return values;
}();

}  // namespace

std::string base64(std::span<const std::byte> bytes) {
    std::string text;
    text.reserve((bytes.size() + 2) / 3 * 4);
    for (; !bytes.empty(); bytes = bytes.subspan(std::min<std::size_t>(3, bytes.size()))) {
        std::uint32_t group = 0;
        for (std::size_t i = 0; i < 3; ++i) {
            group = group << 8 | (i < bytes.size() ? std::to_integer<std::uint32_t>(bytes[i]) : 0);
        }
        for (std::size_t i = 0; i < 4; ++i) {
            text.push_back(i <= bytes.size() ? kDigits[group >> (18 - 6 * i) & 63] : '=');
        }
    }
    return text;
}

std::optional<std::vector<std::byte>> fromBase64(std::string_view text) {
    std::vector<std::byte> bytes;
    bytes.reserve(text.size() / 4 * 3);
    std::uint32_t bits = 0;
    unsigned held = 0;  // bits not given away yet
    bool padded = false;
    for (const char c : text) {
        if (c == ' ' || c == '\n' || c == '\t' || c == '\r') continue;
        padded = padded || c == '=';
        const std::int8_t value = kValues[static_cast<unsigned char>(c)];
        if (padded && c == '=') continue;
        if (padded || value == kNoDigit) return std::nullopt;
        bits = bits << 6 | static_cast<std::uint32_t>(value);
        held += 6;
        if (held < 8) continue;
        held -= 8;
        bytes.push_back(static_cast<std::byte>(bits >> held & 0xFF));
    }
    if (held == 6) return std::nullopt;  // one digit alone is no byte
    return bytes;
}

}  // namespace kx
