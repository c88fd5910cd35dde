// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Platform/Foundation/ApplicationFolder.h>
#include <KXFoundation/Platform/Foundation/PercentEncoding.h>

namespace kx {

std::string applicationFolder(std::string_view identifier) {
    return percentEncoded(identifier, [isFirst = true](char c) mutable {
        const auto byte = static_cast<unsigned char>(c);
        const bool hides = std::exchange(isFirst, false) && c == '.';
        return byte > 0x20 && byte != 0x7F && c != '/' && c != '%' && !hides;
    });
}

}  // namespace kx
