// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <optional>
#include <span>
#include <vector>

#include <KXFoundation/Platform/Graphics/GIF/GIFFrame.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

/// All frames of a file and what it says about playing them, found without unpacking a pixel.
struct GIFContents {
    std::vector<GIFFrame> frames;
    std::uint16_t loopCount = 0;  ///< how often the animation plays; 0 is for ever
    std::optional<Error>
        problem;  ///< why there may have been more frames; none at a proper or missing trailer

    /// Pixels, of the frames that have no more than `limit`: larger ones are never unpacked.
    [[nodiscard]] std::uint64_t largestFrame(std::uint64_t limit) const noexcept;

    /// The latest frame, not after `index`, that `index` may be built up from on an empty canvas; frame 0 if
    /// no other. Where data are broken older pixels stay to be seen, so `isComplete` is asked whether those
    /// of a frame are whole; without it all count as whole.
    [[nodiscard]] KX_EXPORT std::size_t keyFrame(
        std::size_t index, std::uint32_t canvasWidth, std::uint32_t canvasHeight,
        const std::function<bool(const GIFFrame&)>& isComplete = {}) const;
};

/// Reads the structure of a GIF, one frame at a time: header, screen, palettes, extensions. Unpacks nothing
/// and allocates nothing (but for contents). The bytes stay the caller's and must outlive the reader and its
/// frames.
class KX_EXPORT GIFReader {
  public:
    /// Reads up to the first block. Corrupt: no GIF. Ended: stops inside the header. TooLarge: canvas beyond
    /// limits.
    static Result<GIFReader> open(std::span<const std::uint8_t> bytes, GIFLimits limits = {});

    [[nodiscard]] std::uint32_t width() const noexcept { return width_; }
    [[nodiscard]] std::uint32_t height() const noexcept { return height_; }
    [[nodiscard]] const GIFLimits& limits() const noexcept { return limits_; }

    /// As far as the file was read: 0, for ever, until an extension says otherwise.
    [[nodiscard]] std::uint16_t loopCount() const noexcept { return loopCount_.value_or(0); }

    /// The next frame, or why there is none: none left (a value of std::nullopt; a missing trailer is one
    /// too), Ended inside a frame's description, Corrupt at a block that the format does not know.
    Result<std::optional<GIFFrame>> next();

    /// Starts over at the first frame.
    void rewind() noexcept;

    /// Every frame of the file, wherever this reader stands. Takes a step for each 255 bytes.
    [[nodiscard]] GIFContents contents() const;

  private:
    GIFReader(std::span<const std::uint8_t> bytes, GIFLimits limits) noexcept
        : bytes_(bytes), limits_(limits) {}

    [[nodiscard]] std::size_t left() const noexcept { return bytes_.size() - at_; }
    [[nodiscard]] std::uint32_t word(std::size_t offset) const noexcept;
    Result<void> readHeader();
    Result<std::span<const std::uint8_t>> readPalette(std::uint8_t flags);
    Result<std::optional<GIFFrame>> readFrame();
    void readExtension() noexcept;
    void readGraphicControl(std::span<const std::uint8_t> block) noexcept;
    void readLoopCount() noexcept;
    [[nodiscard]] std::optional<std::span<const std::uint8_t>> subBlock() noexcept;
    void skipSubBlocks() noexcept;

    std::span<const std::uint8_t> bytes_;
    GIFLimits limits_;
    std::size_t at_ = 0, firstBlock_ = 0;
    std::uint32_t width_ = 0, height_ = 0;
    std::span<const std::uint8_t> globalPalette_;
    std::optional<std::uint16_t> loopCount_;
    GIFFrame control_;          // what a graphic control extension said about the frame to come
    bool insideFrame_ = false;  // the sub-blocks of the frame given last are still ahead
};

}  // namespace kx
