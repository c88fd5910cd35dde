// SPDX-License-Identifier: MIT

#include <cstring>
#include <string>

#include <webp/decode.h>
#include <webp/demux.h>

#include <KXFoundation/Platform/Graphics/ImageOrientation.h>
#include <KXFoundation/Platform/Graphics/WebpCodec.h>

namespace kx {

namespace {

/// The file's parts: a picture with metadata, and animations, are wrapped in a container.
class Container {
  public:
    explicit Container(std::span<const std::byte> data)
        : data_{reinterpret_cast<const std::uint8_t*>(data.data()), data.size()},
          demuxer_(WebPDemux(&data_)) {}
    ~Container() {
        if (hasFrame_) WebPDemuxReleaseIterator(&frame_);
        WebPDemuxDelete(demuxer_);
    }
    Container(const Container&) = delete;
    Container& operator=(const Container&) = delete;

    [[nodiscard]] std::uint32_t width() const { return WebPDemuxGetI(demuxer_, WEBP_FF_CANVAS_WIDTH); }
    [[nodiscard]] std::uint32_t height() const { return WebPDemuxGetI(demuxer_, WEBP_FF_CANVAS_HEIGHT); }
    [[nodiscard]] bool isRead() const { return demuxer_ != nullptr; }
    [[nodiscard]] const WebPIterator* firstFrame() {
        hasFrame_ = WebPDemuxGetFrame(demuxer_, 1, &frame_) != 0;
        return hasFrame_ ? &frame_ : nullptr;
    }
    [[nodiscard]] ImageOrientation orientation() const {
        WebPChunkIterator chunk;
        if (!WebPDemuxGetChunk(demuxer_, "EXIF", 1, &chunk)) return ImageOrientation::TopLeft;
        const auto found = exifOrientation(
            std::span(reinterpret_cast<const std::byte*>(chunk.chunk.bytes), chunk.chunk.size));
        WebPDemuxReleaseChunkIterator(&chunk);
        return found;
    }

  private:
    WebPData data_;
    WebPDemuxer* demuxer_;
    WebPIterator frame_{};
    bool hasFrame_ = false;
};

/// Decodes into the frame's place on the canvas; premultiplied.
bool decodeInto(NSBitmapImageRep& bitmap, const WebPIterator& frame) {
    const std::size_t stride = std::size_t{bitmap.pixelsWide()} * 4;
    const auto left = static_cast<std::size_t>(frame.x_offset),
               top = static_cast<std::size_t>(frame.y_offset);
    if (left + static_cast<std::size_t>(frame.width) > bitmap.pixelsWide() ||
        top + static_cast<std::size_t>(frame.height) > bitmap.pixelsHigh())
        return false;
    WebPDecoderConfig config;
    if (!WebPInitDecoderConfig(&config)) return false;
    config.output.colorspace = MODE_bgrA;
    config.output.is_external_memory = 1;
    const std::size_t offset = top * stride + left * 4;
    config.output.u.RGBA.rgba = reinterpret_cast<std::uint8_t*>(bitmap.pixels().data()) + offset;
    config.output.u.RGBA.stride = static_cast<int>(stride);
    config.output.u.RGBA.size = bitmap.pixels().size_bytes() - offset;
    return WebPDecode(frame.fragment.bytes, frame.fragment.size, &config) == VP8_STATUS_OK;
}

}  // namespace

bool sniffWebp(std::span<const std::byte> data) {
    return data.size() >= 12 && std::memcmp(data.data(), "RIFF", 4) == 0 &&
           std::memcmp(data.data() + 8, "WEBP", 4) == 0;
}

Result<std::shared_ptr<NSBitmapImageRep>> decodeWebp(std::span<const std::byte> data) {
    Container container(data);
    if (!container.isRead()) return Error{ErrorKind::Corrupt, 0, "WebP: broken container"};
    const std::uint32_t wide = container.width(), high = container.height();
    if (!NSBitmapImageRep::allows(wide, high)) {
        return Error{ErrorKind::TooLarge, 0,
                     "WebP of " + std::to_string(wide) + " x " + std::to_string(high) + " pixels"};
    }
    const WebPIterator* frame = container.firstFrame();
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(wide, high);
    if (!bitmap) return Error{ErrorKind::TooLarge, 0, "WebP: no memory for its pixels"};
    if (!frame || !decodeInto(*bitmap, *frame)) return Error{ErrorKind::Corrupt, 0, "WebP: broken picture"};
    if (auto turned = upright(std::move(bitmap), container.orientation())) return turned;
    return Error{ErrorKind::TooLarge, 0, "WebP: no memory for its pixels"};
}

}  // namespace kx
