// SPDX-License-Identifier: MIT

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include <KXFoundation/Platform/Graphics/ImageDecoder.h>
#include <KXFoundation/Platform/Graphics/Thumbnail.h>

// Any bytes give a picture within the limit, premultiplied, or an error.
extern "C" int LLVMFuzzerTestOneInput(const std::uint8_t* data, std::size_t size) {
    constexpr std::uint64_t kLimit = 1 << 18;
    kx::NSBitmapImageRep::setPixelLimit(kLimit);
    const auto decoded = kx::decodeImage(std::as_bytes(std::span(data, size)));
    const auto small = kx::decodeThumbnail(std::as_bytes(std::span(data, size)), 8, 6);
    if (small && ((*small)->pixelsWide() > 8 || (*small)->pixelsHigh() > 6)) std::abort();
    if (!decoded) return 0;
    if (!small) std::abort();
    const auto pixels = std::as_const(**decoded).pixels();
    if (pixels.size() > kLimit) std::abort();
    for (const std::uint32_t pixel : pixels) {
        const std::uint32_t alpha = pixel >> 24;
        if ((pixel & 255) > alpha || (pixel >> 8 & 255) > alpha || (pixel >> 16 & 255) > alpha) std::abort();
    }
    return 0;
}
