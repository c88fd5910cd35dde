// SPDX-License-Identifier: MIT

#include <cstring>
#include <string>

#include <KXFoundation/Platform/Graphics/GIF/GIFDecoder.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFImage.h>

namespace kx {

bool sniffGif(std::span<const std::byte> data) {
    return data.size() >= 6 &&
           (std::memcmp(data.data(), "GIF87a", 6) == 0 || std::memcmp(data.data(), "GIF89a", 6) == 0);
}

Result<std::shared_ptr<NSBitmapImageRep>> decodeGif(std::span<const std::byte> data) {
    const std::span bytes(reinterpret_cast<const std::uint8_t*>(data.data()), data.size());
    auto decoder = GIFDecoder::open(bytes, {.pixels = NSBitmapImageRep::pixelLimit()});
    if (!decoder) return std::move(decoder).error();
    const auto bitmap = NSBitmapImageRep::bitmapWithPixels(decoder->width(), decoder->height());
    if (!bitmap) {
        return Error{ErrorKind::TooLarge, 0,
                     "GIF of " + std::to_string(decoder->width()) + " x " +
                         std::to_string(decoder->height()) + " pixels"};
    }
    const auto frame = decoder->next(pixelsOf(*bitmap));
    if (!frame) return frame.error();
    if (!*frame) return Error{ErrorKind::Ended, 0, "GIF without a frame"};
    return bitmap;
}

GIFPixels pixelsOf(NSBitmapImageRep& bitmap) {
    return {reinterpret_cast<std::uint8_t*>(bitmap.pixels().data()), std::size_t{bitmap.pixelsWide()} * 4};
}

}  // namespace kx
