// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Graphics/NSColorSpace.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

class GraphicsContext;

/// One way in which a picture exists.
class KX_EXPORT NSImageRep : public Subclass<NSImageRep, NSObject> {
  public:
    /// Pixels; 0 where the representation draws at any resolution.
    [[nodiscard]] virtual std::uint32_t pixelsWide() const noexcept { return 0; }
    [[nodiscard]] virtual std::uint32_t pixelsHigh() const noexcept { return 0; }

    /// Grows with every change of its contents that it knows of. Any thread.
    [[nodiscard]] virtual std::uint64_t changeCount() const noexcept { return 0; }

    /// Draws the whole picture into the rectangle; false if it could not.
    virtual bool draw(GraphicsContext& context, NSRect into, double opacity) const = 0;

  protected:
    NSImageRep() = default;
};

/// Pixels, top row first. A pixel is 0xAARRGGBB, its colours premultiplied by its alpha (bytes blue, green,
/// red, alpha in memory); rows follow each other without a gap. One thread at a time while anybody writes; as
/// many readers as wanted otherwise.
class KX_EXPORT NSBitmapImageRep : public Subclass<NSBitmapImageRep, NSImageRep> {
  public:
    /// The widest and highest that can be drawn into.
    static constexpr std::uint32_t kLongestSide = 32'767;

    /// A transparent bitmap; none if a side is 0 or longer than kLongestSide, or pixelLimit() is exceeded.
    [[nodiscard]] static std::shared_ptr<NSBitmapImageRep> bitmapWithPixels(std::uint32_t wide,
                                                                            std::uint32_t high);
    /// The same for a size in points, at a pixel to the point and with fractions cut off.
    [[nodiscard]] static std::shared_ptr<NSBitmapImageRep> bitmapWithSize(NSSize points);

    /// How many pixels a bitmap may have, whether drawn or read from a file: 64 Mi (256 MiB) unless set.
    /// Checked before anything is allocated. Any thread.
    [[nodiscard]] static std::uint64_t pixelLimit() noexcept;
    static void setPixelLimit(std::uint64_t pixels) noexcept;
    /// Whether a bitmap may have this size.
    [[nodiscard]] static bool allows(std::uint64_t wide, std::uint64_t high) noexcept;

    [[nodiscard]] std::uint32_t pixelsWide() const noexcept override { return wide_; }
    [[nodiscard]] std::uint32_t pixelsHigh() const noexcept override { return high_; }

    /// For writing: counts as a change.
    [[nodiscard]] std::span<std::uint32_t> pixels() noexcept {
        changes_.fetch_add(1, std::memory_order_relaxed);
        return {pixels_.get(), count()};
    }
    [[nodiscard]] std::span<const std::uint32_t> pixels() const noexcept { return {pixels_.get(), count()}; }
    /// The pixel of that column and row; 0 outside.
    [[nodiscard]] std::uint32_t pixelAt(std::uint32_t x, std::uint32_t y) const noexcept;

    /// While there is a graphics context on it, another one whenever it is asked: anything may have been
    /// drawn.
    [[nodiscard]] std::uint64_t changeCount() const noexcept override;

    /// The encoded bytes, in any format that decodeImage reads, that the pixels were read from; null if they
    /// come from elsewhere, or pixels() were taken for writing since. Archives keep these bytes.
    [[nodiscard]] Value encodedData() const noexcept {
        return changeCount() == changesWhenDecoded_ ? encodedData_ : Value();
    }
    /// Said by who has just read the pixels from there.
    void setEncodedData(Value data) noexcept;

    /// The name of the colour space that the pixels are said to be in, one of kx::NS...ColorSpace. It is kept
    /// for who asks: all of them are sRGB here.
    [[nodiscard]] const std::string& colorSpaceName() const noexcept { return colorSpaceName_; }
    void setColorSpaceName(std::string_view name) { colorSpaceName_ = name; }

    bool draw(GraphicsContext& context, NSRect into, double opacity) const override;

    bool init(std::uint32_t wide, std::uint32_t high);

    /// Said by contexts of their beginning (1) and their end (-1).
    void addContexts(int count) noexcept;

  protected:
    NSBitmapImageRep() = default;

  private:
    [[nodiscard]] std::size_t count() const noexcept { return std::size_t{wide_} * high_; }

    std::uint32_t wide_ = 0;
    std::uint32_t high_ = 0;
    std::string colorSpaceName_{NSDeviceRGBColorSpace};
    std::unique_ptr<std::uint32_t[]> pixels_;
    mutable std::atomic<std::uint64_t> changes_{0};  // readers that hold no const bitmap count too
    std::atomic<int> contexts_{0};
    std::uint64_t changesWhenDecoded_ = 0;
    Value encodedData_;
};

/// A picture drawn by a callback whenever it is shown, at the resolution of that place.
class KX_EXPORT NSCustomImageRep : public Subclass<NSCustomImageRep, NSImageRep> {
  public:
    /// Draws the whole picture into the rectangle, whose origin is (0, 0) and whose size is the one given to
    /// the maker; the context is current meanwhile. Answers whether it could.
    using DrawingHandler = std::function<bool(NSRect)>;

    bool draw(GraphicsContext& context, NSRect into, double opacity) const override;

    bool init(NSSize size, DrawingHandler handler);

  protected:
    NSCustomImageRep() = default;

  private:
    NSSize size_;
    DrawingHandler handler_;
};

}  // namespace kx
