// SPDX-License-Identifier: MIT

#include <algorithm>
#include <utility>

#include <KXFoundation/Platform/Graphics/GIF/GIFFrameStream.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFImage.h>
#include <KXFoundation/Platform/Graphics/ImageDecoder.h>
#include <KXFoundation/Platform/Graphics/ImageSource.h>
#include <KXFoundation/Platform/Graphics/NSStreamedImageRep.h>
#include <KXFoundation/Platform/Graphics/StreamedFrames.h>

namespace kx {

namespace {

std::shared_ptr<const GIFFile> readGIF(const Value& data) {
    const auto bytes = *data.asData();
    const auto reader = GIFReader::open({reinterpret_cast<const std::uint8_t*>(bytes.data()), bytes.size()},
                                        {.pixels = NSBitmapImageRep::pixelLimit()});
    if (!reader || !NSBitmapImageRep::allows(reader->width(), reader->height())) return nullptr;
    return std::make_shared<const GIFFile>(GIFFile{data, reader->width(), reader->height(),
                                                   std::make_shared<const GIFContents>(reader->contents())});
}

/// Seconds. Delays below two hundredths come from a time when no machine could keep them, and mean "fast".
double clampedDelay(std::uint16_t hundredths) {
    return hundredths < 2 ? 0.1 : hundredths / 100.0;
}

/// The bitmap as something that holds the memory's share too.
std::shared_ptr<NSBitmapImageRep> holding(std::shared_ptr<NSBitmapImageRep> bitmap,
                                          std::shared_ptr<FrameMemory> memory) {
    NSBitmapImageRep* const plain = bitmap.get();
    return {plain, [bitmap = std::move(bitmap), memory = std::move(memory)](NSBitmapImageRep*) {}};
}

}  // namespace

std::shared_ptr<ImageSource> ImageSource::initWithData(Value data) {
    return make<ImageSource>(std::move(data));
}

bool ImageSource::init(Value data) {
    const auto bytes = data.asData();
    if (!bytes || !Super::init()) return false;
    data_ = std::move(data);
    const ImageFormat* const format = imageFormatOf(*bytes);
    const bool isGIF = format && format->name == "GIF";
    if (isGIF) gif_ = readGIF(data_);
    isStill_ = format && !isGIF;
    return true;
}

std::size_t ImageSource::count() const noexcept {
    return gif_ ? gif_->contents->frames.size() : isStill_ ? 1 : 0;
}

Value ImageSource::properties() const {
    DictionaryBuilder builder;
    if (gif_) {
        builder.set(kGIFDictionary, DictionaryBuilder().set(kLoopCount, gif_->contents->loopCount).build());
    }
    return builder.build();
}

Value ImageSource::propertiesAtIndex(std::size_t index) const {
    if (index >= count()) return {};
    DictionaryBuilder builder;
    if (!gif_) return builder.build();
    DictionaryBuilder gif;
    if (const auto delay = gif_->contents->frames[index].delayHundredths) {
        gif.set(kUnclampedDelayTime, *delay / 100.0).set(kDelayTime, clampedDelay(*delay));
    }
    return builder.set(kPixelWidth, gif_->width)
        .set(kPixelHeight, gif_->height)
        .set(kGIFDictionary, gif.build())
        .build();
}

std::shared_ptr<NSImageRep> ImageSource::imageRepAtIndex(std::size_t index) {
    if (index >= count()) return nullptr;
    if (frames_.empty()) prepareFrames();
    return frames_[index];
}

void ImageSource::prepareFrames() {
    if (count() == 1) {
        auto picture = decodeImageKeepingData(data_);
        frames_.push_back(picture ? *picture : nullptr);
    } else if (!decodeWhole()) {
        const auto streamed = std::make_shared<StreamedFrames>(gif_);
        for (std::size_t i = 0; i < count(); ++i) frames_.push_back(make<NSStreamedImageRep>(streamed, i));
    }
}

/// False, and nothing kept, where the frames are too much.
bool ImageSource::decodeWhole() {
    const std::uint64_t bytes = count() * gif_->canvasBytes();  // at most 100,000 times 256 MiB
    auto share = bytes < kSmall ? FrameMemory::within(bytes) : std::nullopt;
    if (!share) return false;
    const auto memory = std::make_shared<FrameMemory>(std::move(*share));
    GIFAheadDecoder decoder(gif_->contents, gif_->width, gif_->height,
                            {.pixels = NSBitmapImageRep::pixelLimit()});
    std::shared_ptr<NSBitmapImageRep> before;
    while (decoder.position() < count()) {
        const auto bitmap = NSBitmapImageRep::bitmapWithPixels(gif_->width, gif_->height);
        if (!bitmap) return frames_.clear(), false;
        before ? decoder.next(pixelsOf(*bitmap), pixelsOf(*before)) : decoder.next(pixelsOf(*bitmap));
        frames_.push_back(holding(bitmap, memory));
        before = bitmap;
    }
    return true;
}

}  // namespace kx
