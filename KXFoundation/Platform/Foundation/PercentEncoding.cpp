// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/PercentEncoding.h>

namespace kx {

bool isUnreserved(char c) noexcept {
    constexpr std::string_view kUnreserved =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    return kUnreserved.find(c) != kUnreserved.npos;
}

std::string percentEncoded(std::string_view text) {
    return percentEncoded(text, isUnreserved);
}

}  // namespace kx
