// SPDX-License-Identifier: MIT
#pragma once

#include <concepts>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// The text with each byte as "%XX" that `keeps` does not keep; "%" itself must be one of those where the
/// text is to be told again.
template <std::predicate<char> Keeps>
[[nodiscard]] std::string percentEncoded(std::string_view text, Keeps keeps) {
    constexpr std::string_view kHexDigits = "0123456789ABCDEF";
    std::string encoded;
    encoded.reserve(text.size());
    for (const char c : text) {
        if (keeps(c)) {
            encoded += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        encoded.append({'%', kHexDigits[byte >> 4], kHexDigits[byte & 15]});
    }
    return encoded;
}

/// Letters, digits and "-._~" (RFC 3986, 2.3).
[[nodiscard]] KX_EXPORT bool isUnreserved(char c) noexcept;

/// The text as a part of an address that is taken for nothing but itself: every byte as "%XX" that is not
/// unreserved.
[[nodiscard]] KX_EXPORT std::string percentEncoded(std::string_view text);

}  // namespace kx
