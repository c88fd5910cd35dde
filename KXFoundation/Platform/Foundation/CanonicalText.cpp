// SPDX-License-Identifier: MIT

#include <algorithm>
#include <limits>

#include <KXFoundation/Platform/Foundation/CanonicalText.h>
#include <KXFoundation/Platform/Foundation/IcuModule.h>
#include <KXFoundation/Platform/Foundation/Utf8Validation.h>

namespace kx {

namespace {

bool isAscii(std::string_view text) {
    return std::ranges::all_of(text, [](char c) { return static_cast<unsigned char>(c) < 0x80; });
}

}  // namespace

std::string canonicalText(std::string_view text) {
    std::string canonical(text);
    constexpr std::size_t kLongest = std::numeric_limits<std::int32_t>::max();
    if (isAscii(text) || text.size() > kLongest || !isUtf8(text)) return canonical;
    const IcuModule* const icu = icuModule();
    std::string normalized;
    const IcuText into(normalized);
    const bool isDone = icu && icu->normalize(text.data(), static_cast<std::int32_t>(text.size()), &into);
    return isDone ? normalized : canonical;
}

}  // namespace kx
