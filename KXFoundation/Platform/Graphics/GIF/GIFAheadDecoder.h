// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <optional>
#include <span>

#include <KXFoundation/Platform/Graphics/GIF/GIFCanvas.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFReader.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

/// The frames of a GIF in order, like GIFDecoder::next, on two cores: while the caller paints and uses a
/// frame, a block of the shared background queue unpacks the next ones; a caller that would have to wait
/// unpacks too. Frames of less than kWorthwhile pixels are left to the caller. Where the queue has no thread
/// free everything happens on the calling one, never a deadlock. One thread at a time.
///
///     GIFAheadDecoder decoder(reader.contents(), reader.width(), reader.height());
///     while (decoder.next(pixels)) show(pixels);
///
/// Holds planesFor() index planes of the largest frame.
class KX_EXPORT GIFAheadDecoder {
  public:
    static constexpr std::uint64_t kWorthwhile = std::uint64_t{1} << 16;
    static constexpr std::uint64_t kManyPixels = std::uint64_t{8} << 20;
    static constexpr std::size_t kPlanes = 4;
    /// One where it is not worthwhile, or would be much memory.
    [[nodiscard]] static constexpr std::size_t planesFor(std::uint64_t largestFrame) noexcept {
        return largestFrame > kManyPixels || largestFrame < kWorthwhile ? 1 : kPlanes;
    }

    /// What the contents point into, the file's bytes, must outlive the decoder.
    GIFAheadDecoder(std::shared_ptr<const GIFContents> contents, std::uint32_t width, std::uint32_t height,
                    GIFLimits limits = {});
    /// Waits for what is being unpacked.
    ~GIFAheadDecoder();
    GIFAheadDecoder(const GIFAheadDecoder&) = delete;
    GIFAheadDecoder& operator=(const GIFAheadDecoder&) = delete;

    /// The frame that next() gives, as many as there are at the end.
    [[nodiscard]] std::size_t position() const noexcept { return position_; }

    /// Composites the next frame over what the call before left in `pixels`; after the start, rewind() or
    /// startAt() anything may be in them. False, and nothing changed, after the last frame.
    bool next(GIFPixels pixels);
    /// The same into a place of its own; `previous` holds the frame before and stays as it is.
    bool next(GIFPixels pixels, GIFPixels previous);

    /// What was wrong with the data of the frame given last; it shows what could be unpacked.
    [[nodiscard]] const std::optional<Error>& damage() const noexcept { return damage_; }

    /// The next frame is `index`, on an empty canvas; the end where it is beyond.
    void startAt(std::size_t index);
    void rewind() { startAt(0); }

    /// The frame to start at for frame `index` to come out whole: the nearest one that needs none before it.
    [[nodiscard]] std::size_t startFor(std::size_t index);

  private:
    struct Shared;
    struct Slot;
    [[nodiscard]] Slot& unpacked();
    void finish(Slot& slot);
    template <class Paint>
    bool paintNext(Paint paint);

    std::shared_ptr<Shared> shared_;  // with the blocks on the queue
    std::uint32_t width_, height_;
    GIFLimits limits_;
    GIFCanvas canvas_;
    std::size_t position_ = 0;
    std::optional<Error> damage_;
};

}  // namespace kx
