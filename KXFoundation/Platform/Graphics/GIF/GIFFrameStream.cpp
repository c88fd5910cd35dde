#include <utility>

#include <KXFoundation/Platform/Graphics/BitmapPool.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFFrameStream.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFImage.h>

namespace kx {

/// Only touched on the stream's queue.
struct GIFFrameStream::State {
    State(std::shared_ptr<const GIFFile> given, FrameMemory share)
        : memory(std::move(share)),
          file(std::move(given)),
          decoder(file->contents, file->width, file->height, {.pixels = NSBitmapImageRep::pixelLimit()}),
          pool(std::make_shared<BitmapPool>(file->width, file->height)) {}

    Bitmap bitmapAtIndex(std::size_t index);
    void moveTo(std::size_t index);

    FrameMemory memory;
    std::shared_ptr<const GIFFile> file;
    GIFAheadDecoder decoder;
    std::shared_ptr<BitmapPool> pool;
    Bitmap last;  // the frame before the decoder's position; none at a start
};

GIFFrameStream::Bitmap GIFFrameStream::State::bitmapAtIndex(std::size_t index) {
    if (index >= file->contents->frames.size()) return nullptr;
    if (last && index + 1 == decoder.position()) return last;
    moveTo(index);
    const Bitmap bitmap = pool->take();
    if (!bitmap) return nullptr;
    const GIFPixels pixels = pixelsOf(*bitmap);
    if (const Bitmap before = std::exchange(last, nullptr)) decoder.next(pixels, pixelsOf(*before));
    while (decoder.position() <= index) decoder.next(pixels);
    last = bitmap;
    return bitmap;
}

/// To where the frame is built up from, unless what was decoded last is on the way.
void GIFFrameStream::State::moveTo(std::size_t index) {
    const std::size_t position = decoder.position();
    if (index == position) return;
    const bool skips = file->contents->keyFrame(index, file->width, file->height) > position;
    if (index > position && !skips) return;
    const std::size_t start = decoder.startFor(index);
    if (index > position && start <= position) return;
    decoder.startAt(start);
    last = nullptr;
}

GIFFrameStream::GIFFrameStream(std::shared_ptr<const GIFFile> file, FrameMemory memory)
    : state_(std::make_shared<State>(std::move(file), std::move(memory))),
      queue_(DispatchQueue::serial("GIF frames")) {}

GIFFrameStream::~GIFFrameStream() = default;

GIFFrameStream::Bitmap GIFFrameStream::bitmapAtIndex(std::size_t index) {
    return queue_->sync([&] { return state_->bitmapAtIndex(index); });
}

void GIFFrameStream::prepare(std::size_t index, std::function<void(Bitmap)> done) {
    queue_->async([state = state_, index, done = std::move(done)] { done(state->bitmapAtIndex(index)); });
}

/// Three bitmaps: the one shown, the next one, and what a frame covers that asks to have it back.
std::uint64_t GIFFrameStream::memoryFor(const GIFFile& file) noexcept {
    const std::uint64_t largest = file.contents->largestFrame(NSBitmapImageRep::pixelLimit());
    return 3 * file.canvasBytes() + GIFAheadDecoder::planesFor(largest) * largest;
}

}  // namespace kx
