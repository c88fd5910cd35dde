// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include <KXFoundation/Platform/Graphics/GIF/GIFCanvas.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFFrame.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFIndexPlane.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFReader.h>
#include <KXFoundation/Platform/Runtime/Result.h>

/// A GIF, frame by frame, into memory of the caller's. One decoder belongs to one thread at a time. Besides
/// the caller's pixels it holds one index plane, a byte for each pixel of the largest frame.
///
///     Result<GIFDecoder> decoder = GIFDecoder::open(bytes);
///     while (Result<std::optional<GIFFrame>> frame = decoder->next(pixels); frame && *frame)
///         show(pixels, **frame);
///
/// Its parts serve alone too: GIFReader finds frames and their delays without unpacking them; GIFIndexPlane
/// unpacks, any number of frames on as many threads; GIFCanvas paints them in order. docs/gif-decoder.md
/// tells how it works.
namespace kx {

class KX_EXPORT GIFDecoder {
  public:
    /// The bytes stay the caller's and must outlive the decoder. Corrupt: no GIF. Ended: stops inside the
    /// header. TooLarge: the canvas is beyond the limit.
    static Result<GIFDecoder> open(std::span<const std::uint8_t> bytes, GIFLimits limits = {});

    [[nodiscard]] std::uint32_t width() const noexcept { return reader_.width(); }
    [[nodiscard]] std::uint32_t height() const noexcept { return reader_.height(); }

    /// How often the animation plays, as far as the file was read; 0 is for ever.
    [[nodiscard]] std::uint16_t loopCount() const noexcept { return reader_.loopCount(); }

    /// Composites the next frame over what the call before left in `pixels`; for the first frame that may be
    /// anything. A value of std::nullopt after the last frame. An error is a break in the file's structure,
    /// and no frame can follow. A frame whose own data are broken is no error here: it shows what could be
    /// unpacked, at worst the canvas as it was; damage() tells.
    Result<std::optional<GIFFrame>> next(GIFPixels pixels);

    /// The same into a place of its own; `previous` holds the frame before and stays as it is.
    Result<std::optional<GIFFrame>> next(GIFPixels pixels, GIFPixels previous);

    /// What was wrong with the data of the frame given last.
    [[nodiscard]] const std::optional<Error>& damage() const noexcept { return damage_; }

    /// Starts over at the first frame.
    void rewind() noexcept;

    /// Every frame's place, delay and disposal, without unpacking any.
    [[nodiscard]] GIFContents contents() const { return reader_.contents(); }

  private:
    explicit GIFDecoder(const GIFReader& reader);
    void unpack(const GIFFrame& frame);

    GIFReader reader_;
    GIFIndexPlane plane_;
    GIFCanvas canvas_;
    std::optional<Error> damage_;
};

}  // namespace kx
