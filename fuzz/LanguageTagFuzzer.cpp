// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstdint>
#include <cstdlib>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSLocale.h>

namespace {

bool isOfTag(char c) {
    return (c >= 'a' && c <= 'z') || (c >= 'A' && c <= 'Z') || (c >= '0' && c <= '9') || c == '-';
}

}  // namespace

extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    const auto tag = kx::languageTagForPosixName({reinterpret_cast<const char*>(data), size});
    if (!tag) return 0;
    if (!std::ranges::all_of(*tag, isOfTag)) std::abort();
    if (!kx::make<kx::NSLocale>(*tag)->languageCode()) std::abort();
    const bool hasVariant = tag->ends_with("-valencia");  // names have no place for it but after the '@'
    if (!hasVariant && kx::languageTagForPosixName(*tag) != *tag) std::abort();
    return 0;
}
