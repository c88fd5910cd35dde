// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class GIFFrameStream;
class StreamedFrames;

/// One frame of an animation that is too large to be kept whole: decoded whenever it is drawn. Any thread.
class KX_EXPORT NSStreamedImageRep : public Subclass<NSStreamedImageRep, NSImageRep> {
  public:
    [[nodiscard]] std::uint32_t pixelsWide() const noexcept override;
    [[nodiscard]] std::uint32_t pixelsHigh() const noexcept override;
    bool draw(GraphicsContext& context, NSRect into, double opacity) const override;

    /// Its number in the file.
    [[nodiscard]] std::size_t index() const noexcept { return index_; }
    /// For who wants the frames one after another: the file's first stream is the one that drawing uses too,
    /// further ones are made where there is memory for them, else the first is shared.
    [[nodiscard]] std::shared_ptr<GIFFrameStream> stream() const;

    bool init(std::shared_ptr<StreamedFrames> frames, std::size_t index);

  protected:
    NSStreamedImageRep() = default;

  private:
    std::shared_ptr<StreamedFrames> frames_;
    std::size_t index_ = 0;
};

}  // namespace kx
