// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include <KXFoundation/Platform/Graphics/GIF/GIFFrame.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

/// The first half of decoding: a frame's colour indices, in the order of the file. Frames do not depend on
/// each other here, so every thread that has a plane of its own may unpack another frame. Reused from frame
/// to frame; grows to the largest.
class KX_EXPORT GIFIndexPlane {
  public:
    explicit GIFIndexPlane(GIFLimits limits = {});
    GIFIndexPlane(GIFIndexPlane&&) noexcept;
    GIFIndexPlane& operator=(GIFIndexPlane&&) noexcept;
    ~GIFIndexPlane();

    /// Unpacks the frame. Ended: the data stop before the last index. Corrupt: they break the packing.
    /// TooLarge: no memory was taken. After any of these the plane holds what came before, possibly nothing.
    Result<void> unpack(const GIFFrame& frame);

    /// Row after row of the last frame's rectangle, interlaced rows in the file's order.
    [[nodiscard]] std::span<const std::uint8_t> indices() const noexcept;

  private:
    void reserve(std::size_t count);

    struct Plane;
    std::uint64_t maxPixels_;
    std::unique_ptr<Plane> plane_;
};

}  // namespace kx
