// SPDX-License-Identifier: MIT

#include <charconv>

#include <KXFoundation/Platform/Services/IPv4Address.h>

namespace kx {

std::string IPv4Address::text() const {
    std::array<char, sizeof "255.255.255.255"> text;
    char* end = text.data();
    for (const std::uint8_t byte : bytes) {
        end = std::to_chars(end, text.data() + text.size(), byte).ptr;
        *end++ = '.';
    }
    return {text.data(), end - 1};
}

}  // namespace kx
