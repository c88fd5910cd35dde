// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Graphics/GIF/GIFFrameStream.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

/// Private to Graphics.
namespace kx {

/// The streams of one file. Any thread.
class StreamedFrames {
  public:
    explicit StreamedFrames(std::shared_ptr<const GIFFile> file);

    [[nodiscard]] const GIFFile& file() const noexcept { return *file_; }
    /// The one that is always there.
    [[nodiscard]] const std::shared_ptr<GIFFrameStream>& shared() const noexcept { return shared_; }
    /// The shared one for the first who holds it; one of their own for others, as far as memory allows.
    [[nodiscard]] std::shared_ptr<GIFFrameStream> open();

  private:
    const std::shared_ptr<const GIFFile> file_;
    const std::shared_ptr<GIFFrameStream> shared_;
    Mutex mutex_;
    std::weak_ptr<GIFFrameStream> lent_ KX_GUARDED_BY(mutex_);
};

}  // namespace kx
