// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSColor;
class NSImage;

/// Pictures made from pictures. Sizes that make no bitmap (negative ones, less than a pixel, more than
/// NSBitmapImageRep allows) give an empty picture of size 0 x 0; an absent receiver gives none. No instances;
/// any thread, as long as nobody changes the receiver.
struct KX_EXPORT NSImage_Mask {
    NSImage_Mask() = delete;

    /// The picture's shape in that colour, upright: a bitmap with a pixel to the point, fractions cut off. A
    /// side of 0 counts as 1. None for an absent colour.
    [[nodiscard]] static std::shared_ptr<NSImage> imageContentWithColor(
        const std::shared_ptr<NSImage>& image, const std::shared_ptr<NSColor>& color);

    /// The picture without colour and at half its contrast about middle grey, on encoded values; alpha stays.
    /// Made from the largest bitmap it has, with a point to each of its pixels.
    [[nodiscard]] static std::shared_ptr<NSImage> grayImage(const std::shared_ptr<NSImage>& image);

    /// The picture scaled to that width in points (0 counts as 1) and to the height that keeps its
    /// proportions: a bitmap with a pixel to the point, fractions cut off. The very same object if it has
    /// that width.
    [[nodiscard]] static std::shared_ptr<NSImage> fixImageSizeWithWidth(const std::shared_ptr<NSImage>& image,
                                                                        double width);
};

}  // namespace kx
