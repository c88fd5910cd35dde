// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <KXFoundation/Platform/Graphics/ImageDecoder.h>
#include <KXFoundation/Platform/Graphics/JpegCodec.h>
#include <KXFoundation/Platform/Graphics/Resampling/Resampler.h>
#include <KXFoundation/Platform/Graphics/Thumbnail.h>

namespace kx {

namespace {

/// The size reduced to the box; no side below a pixel.
PixelSize fitted(PixelSize size, PixelSize box) {
    const double scale = std::min({1.0, double(box.wide) / size.wide, double(box.high) / size.high});
    const auto side = [&](std::uint32_t of) {
        return std::max<std::uint32_t>(1, static_cast<std::uint32_t>(std::lround(of * scale)));
    };
    return {side(size.wide), side(size.high)};
}

Result<std::shared_ptr<NSBitmapImageRep>> decodeAtLeast(std::span<const std::byte> data, PixelSize box) {
    if (!sniffJpeg(data)) return decodeImage(data);
    const auto size = jpegSize(data);
    if (!size) return size.error();
    const PixelSize wanted = fitted(*size, box);
    return decodeJpegReduced(data, wanted.wide, wanted.high);
}

}  // namespace

Result<std::shared_ptr<NSBitmapImageRep>> decodeThumbnail(std::span<const std::byte> data,
                                                          std::uint32_t mostWide, std::uint32_t mostHigh) {
    const PixelSize box{mostWide, mostHigh};
    auto whole = decodeAtLeast(data, box);
    if (!whole) return whole;
    const NSBitmapImageRep& bitmap = **whole;
    const PixelSize size = fitted({bitmap.pixelsWide(), bitmap.pixelsHigh()}, box);
    if (size.wide == bitmap.pixelsWide() && size.high == bitmap.pixelsHigh()) return whole;
    if (auto small = resampled(bitmap, size.wide, size.high)) return small;
    return Error{ErrorKind::TooLarge, 0, "picture: no memory for a smaller one"};
}

}  // namespace kx
