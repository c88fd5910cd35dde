// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>

/// How a camera was held, as files say it (Exif 2.32 and TIFF 6.0, tag 274). Private to Graphics.
namespace kx {

/// Where the stored rows and columns belong: the first row is the picture's top, the first column its left,
/// and so on.
enum class ImageOrientation : std::uint8_t {
    TopLeft = 1,
    TopRight,
    BottomRight,
    BottomLeft,
    LeftTop,  ///< from here on rows are the picture's columns
    RightTop,
    RightBottom,
    LeftBottom,
};

/// Whether the data begin with the name of an Exif block.
[[nodiscard]] bool isExif(std::span<const std::byte> data) noexcept;

/// The orientation that Exif data (a TIFF header and its first directory, behind the block's name or without
/// it) give; TopLeft for damaged data and those that give none.
[[nodiscard]] ImageOrientation exifOrientation(std::span<const std::byte> exif) noexcept;

/// The bitmap as it is to be seen: itself for TopLeft. None if there is no memory for the other one.
[[nodiscard]] std::shared_ptr<NSBitmapImageRep> upright(std::shared_ptr<NSBitmapImageRep> bitmap,
                                                        ImageOrientation orientation);

}  // namespace kx
