// SPDX-License-Identifier: MIT

#include <cstdint>
#include <cstdlib>
#include <string>
#include <string_view>

#include <KXFoundation/Device/KXNetworkUtils.h>

namespace {

using kx::KXNetworkUtils;

void require(bool holds) {
    if (!holds) std::abort();
}

/// "00:11:22:AA:BB:CC": six fields of two digits.
bool isPlain(std::string_view mac) {
    for (std::size_t at = 0; at < mac.size(); ++at) {
        if ((mac[at] == ':') != (at % 3 == 2)) return false;
    }
    return mac.size() == 17;
}

/// A normalised text is normal, and of six fields below 100 its number says the same as the text.
void checkMac(std::string_view mac) {
    const std::string text = KXNetworkUtils::formatMac(mac);
    require(KXNetworkUtils::formatMac(text) == text);
    const std::int64_t number = KXNetworkUtils::macStringToInteger(mac);
    const std::string back = KXNetworkUtils::formatMACInteger(number, ":");
    require(back.size() == 17);
    require(KXNetworkUtils::macStringToInteger(back) == (number & 0xFFFF'FFFF'FFFF));
    if (!isPlain(text)) return;
    require(KXNetworkUtils::formatMACInteger(KXNetworkUtils::macStringToInteger(text), ":") == text);
}

void checkAddress(std::string_view text) {
    const auto number = static_cast<std::uint32_t>(KXNetworkUtils::ipStringToInteger(text));
    std::string back;
    for (int shift = 24; shift >= 0; shift -= 8)
        back += std::to_string(number >> shift & 255) + (shift > 0 ? "." : "");
    require(static_cast<std::uint32_t>(KXNetworkUtils::ipStringToInteger(back)) == number);
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const std::string_view text(reinterpret_cast<const char*>(data), size);
    checkMac(text);
    checkAddress(text);
    const std::size_t half = size / 2;
    (void)KXNetworkUtils::formatMACAddress(text.substr(0, half), text.substr(half).substr(0, 64));
    return 0;
}
