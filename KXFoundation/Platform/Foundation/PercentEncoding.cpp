#include <KXFoundation/Platform/Foundation/PercentEncoding.h>

namespace kx {

std::string percentEncoded(std::string_view text) {
    static constexpr std::string_view kUnreserved =
        "ABCDEFGHIJKLMNOPQRSTUVWXYZabcdefghijklmnopqrstuvwxyz0123456789-._~";
    return percentEncoded(text, [](char c) { return kUnreserved.find(c) != kUnreserved.npos; });
}

}  // namespace kx
