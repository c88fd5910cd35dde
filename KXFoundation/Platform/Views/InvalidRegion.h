// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Whole pixels of a surface; x and y from the top left corner.
struct PixelRect {
    std::uint32_t x = 0;
    std::uint32_t y = 0;
    std::uint32_t width = 0;
    std::uint32_t height = 0;
    bool operator==(const PixelRect&) const = default;
};

/// Gathers what has to be drawn again: a handful of rectangles, which may overlap a little. Rectangles are
/// joined where that draws nothing in vain and, where there would be too many, where it draws least in vain.
class KX_EXPORT InvalidRegion {
  public:
    static constexpr std::size_t kMostRects = 8;

    void add(NSRect rect);
    [[nodiscard]] bool isEmpty() const noexcept { return rects_.empty(); }
    [[nodiscard]] const std::vector<NSRect>& rects() const noexcept { return rects_; }
    void clear() noexcept { rects_.clear(); }

    /// The pixels that the rectangles touch, inside a surface of that many pixels.
    [[nodiscard]] std::vector<PixelRect> pixels(double scale, std::uint32_t wide, std::uint32_t high) const;

  private:
    void joinCheapestPair();

    std::vector<NSRect> rects_;
};

}  // namespace kx
