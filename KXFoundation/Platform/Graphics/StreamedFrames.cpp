// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Platform/Graphics/StreamedFrames.h>

namespace kx {

StreamedFrames::StreamedFrames(std::shared_ptr<const GIFFile> file)
    : file_(std::move(file)), shared_(std::make_shared<GIFFrameStream>(file_)) {}

std::shared_ptr<GIFFrameStream> StreamedFrames::open() {
    const MutexLock lock(mutex_);
    if (lent_.expired()) {
        // A count of its own, so that its end can be told: kept files that nobody plays shall hold no frames.
        shared_->reserve();
        std::shared_ptr<GIFFrameStream> first(shared_.get(),
                                              [held = shared_](GIFFrameStream*) { held->rest(); });
        lent_ = first;
        return first;
    }
    if (auto memory = FrameMemory::within(GIFFrameStream::memoryFor(*file_)))
        return std::make_shared<GIFFrameStream>(file_, std::move(*memory));
    return shared_;
}

}  // namespace kx
