// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <optional>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Graphics/GIF/FrameMemory.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

struct GIFFile;
class StreamedFrames;

/// What encoded picture data hold: how many frames, what is said about them, and the frames. A GIF has all of
/// its frames; any other format counts as one picture, of which nothing is said. One thread at a time; what
/// it gives away may be used on any.
class KX_EXPORT ImageSource : public Subclass<ImageSource, NSObject> {
  public:
    /// Files with less to show than this, in bytes, are decoded whole, memory permitting.
    static constexpr std::uint64_t kSmall = std::uint64_t{16} << 20;

    /// Over the bytes of a data value, which are shared; none for any other value. Decodes nothing.
    [[nodiscard]] static std::shared_ptr<ImageSource> initWithData(Value data);

    /// 0 if the data begin like no format that can be read, or like a GIF and have none that can be shown. Of
    /// a GIF with a break those before the break.
    [[nodiscard]] virtual std::size_t count() const noexcept;

    /// Of a GIF: kGIFDictionary with kLoopCount (how often it plays; 0 is for ever, and what no extension
    /// says).
    [[nodiscard]] virtual Value properties() const;
    /// Of a GIF's frame: kPixelWidth and kPixelHeight, and kGIFDictionary with kUnclampedDelayTime (as the
    /// file has it) and kDelayTime (0.1 where that is below 0.02), seconds, both missing where the file gives
    /// the frame no delay. Empty for any other picture; null beyond the last frame.
    [[nodiscard]] virtual Value propertiesAtIndex(std::size_t index) const;

    static constexpr std::string_view kGIFDictionary = "{GIF}";
    static constexpr std::string_view kLoopCount = "LoopCount";
    static constexpr std::string_view kUnclampedDelayTime = "UnclampedDelayTime";
    static constexpr std::string_view kDelayTime = "DelayTime";
    static constexpr std::string_view kPixelWidth = "PixelWidth";
    static constexpr std::string_view kPixelHeight = "PixelHeight";

    /// A frame as it is shown, on the whole canvas; one whose data are broken shows what there is, at worst
    /// the frame before. None beyond the last frame, or if a still picture cannot be decoded.
    ///
    /// The first call decides for good: a small GIF is decoded whole, into bitmaps; the frames of others are
    /// an NSStreamedImageRep each.
    [[nodiscard]] std::shared_ptr<NSImageRep> imageRepAtIndex(std::size_t index);

    bool init(Value data);

  protected:
    ImageSource() = default;

  private:
    void prepareFrames();
    bool decodeWhole();

    Value data_;
    bool isStill_ = false;
    std::shared_ptr<const GIFFile> gif_;
    std::vector<std::shared_ptr<NSImageRep>> frames_;
};

}  // namespace kx
