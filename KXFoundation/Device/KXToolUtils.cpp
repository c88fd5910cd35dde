// SPDX-License-Identifier: MIT

#include <KXFoundation/Device/KXToolUtils.h>
#include <KXFoundation/Platform/Foundation/MD5.h>

namespace kx {

std::string KXToolUtils::calculateMD5(std::optional<std::string_view> text) {
    if (!text) return {};
    const auto digest = md5(std::as_bytes(std::span(text->substr(0, text->find('\0')))));
    std::string digits;
    digits.reserve(2 * digest.size());
    for (const std::byte byte : digest) {
        digits.push_back("0123456789abcdef"[std::to_integer<unsigned>(byte >> 4)]);
        digits.push_back("0123456789abcdef"[std::to_integer<unsigned>(byte & std::byte{15})]);
    }
    return digits;
}

}  // namespace kx
