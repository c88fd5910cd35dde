// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <memory>
#include <optional>

#include <KXFoundation/Platform/Graphics/GIF/FrameMemory.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFAheadDecoder.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

class BitmapPool;

/// A GIF's bytes and what was found in them.
struct GIFFile {
    Value data;
    std::uint32_t width = 0, height = 0;
    std::shared_ptr<const GIFContents> contents;  // points into the data

    [[nodiscard]] std::uint64_t canvasBytes() const noexcept { return std::uint64_t{width} * height * 4; }
};

/// The frames of a GIF as bitmaps, decoded when they are asked for; the next one costs one frame, any other
/// as much as the file makes it. Holds the frame given last and works on one more; a bitmap that was given
/// away stays as it is. Any thread; requests are served in the order of their coming, in the background.
class KX_EXPORT GIFFrameStream {
  public:
    /// Without a share of the memory it takes one when it is needed, whatever the budget says.
    explicit GIFFrameStream(std::shared_ptr<const GIFFile> file,
                            std::optional<FrameMemory> memory = std::nullopt);
    ~GIFFrameStream();
    GIFFrameStream(const GIFFrameStream&) = delete;
    GIFFrameStream& operator=(const GIFFrameStream&) = delete;

    using Bitmap = std::shared_ptr<NSBitmapImageRep>;

    /// Waits for the frame; none beyond the last one and where no memory is left.
    [[nodiscard]] Bitmap bitmapAtIndex(std::size_t index);
    /// Calls back in the background.
    void prepare(std::size_t index, std::function<void(Bitmap)> done);

    /// Takes its share of the memory now.
    void reserve();
    /// Lets go of all memory, and of the share, when what was asked before is done; the next frame costs as
    /// any out of order then.
    void rest();

    /// What a stream of the file holds at most, in bytes.
    [[nodiscard]] static std::uint64_t memoryFor(const GIFFile& file) noexcept;

  private:
    struct Work;
    struct State;
    const std::shared_ptr<State> state_;  // with the blocks on the queue
    const std::shared_ptr<DispatchQueue> queue_;
};

}  // namespace kx
