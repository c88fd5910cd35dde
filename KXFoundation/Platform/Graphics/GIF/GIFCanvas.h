// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>
#include <vector>

#include <KXFoundation/Platform/Graphics/GIF/GIFFrame.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFPalette.h>

namespace kx {

/// Pixels of the caller's, as large as the canvas: premultiplied 0xAARRGGBB in the machine's byte order (what
/// Cairo calls ARGB32), alpha 255 or 0. Rows begin `stride` bytes apart, at any alignment.
struct GIFPixels {
    std::uint8_t* bytes = nullptr;
    std::size_t stride = 0;

    [[nodiscard]] std::uint8_t* at(std::uint32_t x, std::uint32_t y) const noexcept {
        return bytes + y * stride + std::size_t{x} * 4;
    }
};

/// The second half of decoding: paints the frames of one animation, in order, over each other. What no frame
/// painted is transparent. Holds no picture of its own, but for what a frame covers that asks to have it
/// back.
///
/// A frame has the rows that its data reach: a broken one paints, hides and disposes of no others. So what a
/// file makes the canvas do is in proportion to its data, whatever sizes it claims.
class KX_EXPORT GIFCanvas {
  public:
    GIFCanvas(std::uint32_t width, std::uint32_t height, VectorSpeed speed = VectorSpeed::Best) noexcept;

    /// Paints the next frame. `pixels` holds the frame before, as it was left; for the first one anything.
    void paint(const GIFFrame& frame, std::span<const std::uint8_t> indices, GIFPixels pixels);

    /// Paints the next frame elsewhere; `previous` holds the one before and is only read.
    void paint(const GIFFrame& frame, std::span<const std::uint8_t> indices, GIFPixels pixels,
               GIFPixels previous);

    /// The next frame is a first one again.
    void restart() noexcept;

  private:
    /// Where a frame's rows go; what lies outside the canvas is cut off.
    struct Rows {
        GIFRect rect;               // as stated
        std::uint32_t visible = 0;  // pixels of each row
        bool interlaced = false;
        std::size_t reached = 0;
    };

    [[nodiscard]] Rows rowsOf(const GIFFrame& frame, std::size_t reached) const noexcept;
    template <class Action>
    void forEachRow(const Rows& rows, Action action) const;
    void dispose(GIFPixels pixels);
    void clearAll(GIFPixels pixels) const noexcept;
    void copyAll(GIFPixels from, GIFPixels to) const noexcept;
    void keepForLater(GIFPixels pixels);
    void paintRows(const GIFFrame& frame, std::span<const std::uint8_t> indices, GIFPixels pixels);

    std::uint32_t width_, height_;
    GIFPalette palette_;
    bool first_ = true;
    Rows last_;  // of the frame painted last, and what becomes of it
    GIFDisposal disposal_ = GIFDisposal::Keep;
    std::vector<std::uint8_t> covered_;  // what the last frame covered
};

}  // namespace kx
