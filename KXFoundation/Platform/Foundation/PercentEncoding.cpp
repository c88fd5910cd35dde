#include <KXFoundation/Platform/Foundation/PercentEncoding.h>

namespace kx {

namespace {

constexpr std::string_view kUnreserved = "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
constexpr std::string_view kHexDigits = "0123456789ABCDEF";

}  // namespace

std::string percentEncoded(std::string_view text) {
    std::string encoded;
    encoded.reserve(text.size());
    for (const char c : text) {
        if (kUnreserved.find(c) != kUnreserved.npos) {
            encoded += c;
            continue;
        }
        const auto byte = static_cast<unsigned char>(c);
        encoded.append({'%', kHexDigits[byte >> 4], kHexDigits[byte & 15]});
    }
    return encoded;
}

}  // namespace kx
