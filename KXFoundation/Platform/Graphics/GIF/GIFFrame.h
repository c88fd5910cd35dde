// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// What a decoder may be made to do by a file that nobody vouches for. Checked before anything is allocated.
struct GIFLimits {
    std::uint64_t pixels = std::uint64_t{64} << 20;  ///< of the canvas, and of any one frame; at most 2^31
    std::size_t frames = 100'000;                    ///< in a table of contents
};

/// What happens to the place of a frame before the next one is painted.
enum class GIFDisposal : std::uint8_t {
    Keep,        ///< it stays
    Background,  ///< it becomes transparent
    Previous,    ///< what was there before the frame comes back
};

struct GIFRect {
    std::uint32_t left = 0, top = 0, width = 0, height = 0;

    [[nodiscard]] std::uint64_t area() const noexcept { return std::uint64_t{width} * height; }
    [[nodiscard]] bool operator==(const GIFRect&) const = default;
};

/// One frame as the file describes it, its pixels still packed. Points into the file's bytes, which must
/// outlive it; needs nothing else, so any thread may decode it.
struct KX_EXPORT GIFFrame {
    GIFRect rect;  ///< as the file says: may lie partly or wholly outside the canvas, or have no area
    GIFDisposal disposal = GIFDisposal::Keep;
    bool interlaced = false;
    std::uint8_t minimumCodeSize = 0;
    std::optional<std::uint8_t> transparentIndex;
    std::optional<std::uint16_t> delayHundredths;  ///< the raw delay; none if the file gives the frame none
    std::span<const std::uint8_t> palette;         ///< red, green, blue; the local one, else the global one
    std::span<const std::uint8_t> packed;  ///< sub-blocks, up to the end of the file or beyond their own

    /// Whether a complete frame leaves nothing to be seen of what was on a canvas of that size.
    [[nodiscard]] bool hidesCanvas(std::uint32_t canvasWidth, std::uint32_t canvasHeight) const noexcept;
    [[nodiscard]] bool coversCanvas(std::uint32_t canvasWidth, std::uint32_t canvasHeight) const noexcept;
};

}  // namespace kx
