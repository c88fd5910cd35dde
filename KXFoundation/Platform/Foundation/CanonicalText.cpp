#include <algorithm>
#include <limits>

#include <unicode/bytestream.h>
#include <unicode/normalizer2.h>

#include <KXFoundation/Platform/Foundation/CanonicalText.h>
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
    UErrorCode status = U_ZERO_ERROR;
    const icu::Normalizer2* form = icu::Normalizer2::getNFCInstance(status);
    if (U_FAILURE(status)) return canonical;
    std::string normalized;
    icu::StringByteSink<std::string> sink(&normalized);
    form->normalizeUTF8(0, {text.data(), static_cast<std::int32_t>(text.size())}, sink, nullptr, status);
    return U_SUCCESS(status) ? normalized : canonical;
}

}  // namespace kx
