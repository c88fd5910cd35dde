// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>

/// JPEG through libjpeg-turbo: baseline and progressive; grey, YCbCr, RGB, CMYK and YCCK. Embedded colour
/// profiles are not applied.
namespace kx {

[[nodiscard]] bool sniffJpeg(std::span<const std::byte> data);

struct PixelSize {
    std::uint32_t wide, high;
};

/// The size of the upright picture, from the file's header; Corrupt where that is damaged.
[[nodiscard]] Result<PixelSize> jpegSize(std::span<const std::byte> data);

/// Upright, as its Exif orientation says. Where the data break off, what came before is shown and the rest
/// is grey.
[[nodiscard]] Result<std::shared_ptr<NSBitmapImageRep>> decodeJpeg(std::span<const std::byte> data);

/// The same, made smaller by 2, 4 or 8 while it is unpacked, as far as neither side gets shorter than asked
/// for: many times faster where only a thumbnail is wanted.
[[nodiscard]] KX_EXPORT Result<std::shared_ptr<NSBitmapImageRep>> decodeJpegReduced(
    std::span<const std::byte> data, std::uint32_t leastWide, std::uint32_t leastHigh);

/// `quality` 0 to 1, or the nearest of these (0.9 is hard to tell from the original). What is transparent
/// lies over white. Any thread.
[[nodiscard]] KX_EXPORT Result<std::vector<std::byte>> encodeJpeg(const NSBitmapImageRep& bitmap,
                                                                  double quality);

}  // namespace kx
