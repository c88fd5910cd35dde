// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSStreamedImageRep.h>
#include <KXFoundation/Platform/Graphics/StreamedFrames.h>

namespace kx {

bool NSStreamedImageRep::init(std::shared_ptr<StreamedFrames> frames, std::size_t index) {
    frames_ = std::move(frames);
    index_ = index;
    return Super::init();
}

std::uint32_t NSStreamedImageRep::pixelsWide() const noexcept {
    return frames_->file().width;
}
std::uint32_t NSStreamedImageRep::pixelsHigh() const noexcept {
    return frames_->file().height;
}

bool NSStreamedImageRep::draw(GraphicsContext& context, NSRect into, double opacity) const {
    const auto bitmap = frames_->shared()->bitmapAtIndex(index_);
    if (bitmap) context.drawBitmap(*bitmap, into, opacity);
    return bitmap != nullptr;
}

std::shared_ptr<GIFFrameStream> NSStreamedImageRep::stream() const {
    return frames_->open();
}

}  // namespace kx
