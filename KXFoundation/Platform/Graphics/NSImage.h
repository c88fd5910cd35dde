// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Foundation/NSSecureCoding.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

/// A picture: a size in points and the representations it can be drawn from. One thread at a time while it is
/// changed. Archives keep its size and its pixels: of a picture read from encoded bytes and not
/// changed since these very bytes, which it therefore holds; of one that a callback draws, what it draws at a
/// pixel to the point.
class KX_EXPORT NSImage : public Subclass<NSImage, NSObject>, public NSSecureCoding {
  public:
    /// An empty picture of that size.
    [[nodiscard]] static std::shared_ptr<NSImage> initWithSize(NSSize size);
    /// The picture in the encoded bytes, one point per pixel; none if they are no picture that can be read.
    [[nodiscard]] static std::shared_ptr<NSImage> initWithData(std::span<const std::byte> data);
    /// The picture in a file; none, and one log line, if it cannot be read. With `name@2x.png` beside
    /// `name.png` it has both representations.
    [[nodiscard]] static std::shared_ptr<NSImage> initWithContentsOfFile(
        std::optional<std::string_view> path);
    /// A picture of one bitmap with `scale` pixels to the point; none for an absent bitmap.
    [[nodiscard]] static std::shared_ptr<NSImage> initWithBitmap(std::shared_ptr<NSBitmapImageRep> bitmap,
                                                                 double scale = 1);
    /// A picture drawn by a callback whenever it is shown.
    [[nodiscard]] static std::shared_ptr<NSImage> imageWithSize(NSSize size,
                                                                NSCustomImageRep::DrawingHandler handler);
    /// The main bundle's picture `<name>.png` (else .jpg, .jpeg, .webp, .tiff, .tif or .gif; `name` may have
    /// its extension), with `<name>@2x.png` if that is there; none if there is neither. While somebody holds
    /// it, the same object is answered. Any thread.
    [[nodiscard]] static std::shared_ptr<NSImage> imageNamed(std::optional<std::string_view> name);

    /// Points.
    [[nodiscard]] NSSize size() const noexcept { return size_; }
    void setSize(NSSize size) noexcept {
        size_ = size;
        ++changes_;
    }

    [[nodiscard]] const std::vector<std::shared_ptr<NSImageRep>>& representations() const noexcept {
        return representations_;
    }
    void addRepresentation(std::shared_ptr<NSImageRep> representation);
    /// Grows with its size's changes, with every representation that is added, and with the counts of these:
    /// who keeps something computed from the picture sees by it whether it still holds.
    [[nodiscard]] std::uint64_t changeCount() const noexcept;

    /// The one to draw where a point is `scale` pixels: the smallest bitmap that has enough of them, else one
    /// that draws at any resolution, else the largest bitmap; none if the picture is empty.
    [[nodiscard]] std::shared_ptr<NSImageRep> bestRepresentation(double scale) const;

    /// Draws into the rectangle of the current graphics context; nothing without one or for an empty picture.
    void drawInRect(NSRect rect, double opacity = 1) const;

    /// The picture as one bitmap with `scale` pixels to the point, sides rounded up; its own where it has one
    /// of that size; none if the picture is empty or has no such size.
    [[nodiscard]] std::shared_ptr<NSBitmapImageRep> bitmapAtScale(double scale) const;
    /// The largest of its bitmaps; where it has none, a new one with a pixel to the point; none if the
    /// picture is empty or has no such size.
    [[nodiscard]] std::shared_ptr<NSBitmapImageRep> largestBitmap() const;
    /// A new bitmap of `size` pixels, fractions cut off, with the top left part of the picture drawn `extent`
    /// pixels large; a transparent one for an empty picture; none if there can be no bitmap of that size.
    /// Bitmaps are resampled (Resampling/Resampler.h), so that a large reduction shows no patterns of its
    /// own.
    [[nodiscard]] std::shared_ptr<NSBitmapImageRep> drawnBitmap(NSSize size, NSSize extent) const;

    bool init(NSSize size = {});
    bool initWithCoder(NSCoder& coder) override;
    void encodeWithCoder(NSCoder& coder) const override;

  protected:
    NSImage() = default;

  private:
    NSSize size_;
    std::uint64_t changes_ = 0;
    std::vector<std::shared_ptr<NSImageRep>> representations_;
};

}  // namespace kx
