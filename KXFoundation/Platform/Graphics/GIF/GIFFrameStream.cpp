// SPDX-License-Identifier: MIT

#include <optional>
#include <utility>

#include <KXFoundation/Platform/Graphics/BitmapPool.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFFrameStream.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFImage.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx {

/// What holds the memory.
struct GIFFrameStream::Work {
    explicit Work(const std::shared_ptr<const GIFFile>& given)
        : file(given),
          decoder(file->contents, file->width, file->height, {.pixels = NSBitmapImageRep::pixelLimit()}),
          pool(std::make_shared<BitmapPool>(file->width, file->height)) {}

    Bitmap bitmapAtIndex(std::size_t index);
    void moveTo(std::size_t index);

    std::shared_ptr<const GIFFile> file;
    GIFAheadDecoder decoder;
    std::shared_ptr<BitmapPool> pool;
    Bitmap last;  // the frame before the decoder's position; none at a start
};

struct GIFFrameStream::State {
    State(std::shared_ptr<const GIFFile> given, std::optional<FrameMemory> share)
        : file(std::move(given)), memory(std::move(share)) {}

    void reserve();
    Bitmap bitmapAtIndex(std::size_t index);
    void rest();

    const std::shared_ptr<const GIFFile> file;
    std::optional<Work> work;  // only touched on the stream's queue
    Mutex mutex;
    std::optional<FrameMemory> memory KX_GUARDED_BY(mutex);
};

void GIFFrameStream::State::reserve() {
    const MutexLock lock(mutex);
    if (!memory) memory.emplace(FrameMemory::regardless(memoryFor(*file)));
}

GIFFrameStream::Bitmap GIFFrameStream::State::bitmapAtIndex(std::size_t index) {
    if (index >= file->contents->frames.size()) return nullptr;
    reserve();
    if (!work) work.emplace(file);
    return work->bitmapAtIndex(index);
}

void GIFFrameStream::State::rest() {
    work.reset();
    const MutexLock lock(mutex);
    memory.reset();
}

GIFFrameStream::Bitmap GIFFrameStream::Work::bitmapAtIndex(std::size_t index) {
    if (last && index + 1 == decoder.position()) return last;
    moveTo(index);
    Bitmap bitmap = pool->take();
    if (!bitmap) return nullptr;
    const GIFPixels pixels = pixelsOf(*bitmap);
    if (const Bitmap before = std::exchange(last, nullptr)) decoder.next(pixels, pixelsOf(*before));
    while (decoder.position() <= index) decoder.next(pixels);
    last = bitmap;
    return bitmap;
}

/// To where the frame is built up from, unless what was decoded last is on the way.
void GIFFrameStream::Work::moveTo(std::size_t index) {
    const std::size_t position = decoder.position();
    if (index == position) return;
    const bool skips = file->contents->keyFrame(index, file->width, file->height) > position;
    if (index > position && !skips) return;
    const std::size_t start = decoder.startFor(index);
    if (index > position && start <= position) return;
    decoder.startAt(start);
    last = nullptr;
}

GIFFrameStream::GIFFrameStream(std::shared_ptr<const GIFFile> file, std::optional<FrameMemory> memory)
    : state_(std::make_shared<State>(std::move(file), std::move(memory))),
      queue_(DispatchQueue::serial("GIF frames")) {}

GIFFrameStream::~GIFFrameStream() = default;

GIFFrameStream::Bitmap GIFFrameStream::bitmapAtIndex(std::size_t index) {
    return queue_->sync([&] { return state_->bitmapAtIndex(index); });
}

void GIFFrameStream::prepare(std::size_t index, std::function<void(Bitmap)> done) {
    queue_->async([state = state_, index, done = std::move(done)] { done(state->bitmapAtIndex(index)); });
}

void GIFFrameStream::reserve() {
    state_->reserve();
}

void GIFFrameStream::rest() {
    queue_->async([state = state_] { state->rest(); });
}

/// Three bitmaps: the one shown, the next one, and what a frame covers that asks to have it back.
std::uint64_t GIFFrameStream::memoryFor(const GIFFile& file) noexcept {
    const std::uint64_t largest = file.contents->largestFrame(NSBitmapImageRep::pixelLimit());
    return 3 * file.canvasBytes() + GIFAheadDecoder::planesFor(largest) * largest;
}

}  // namespace kx
