#include <KXFoundation/Platform/Graphics/GIF/GIFDecoder.h>

#include <string>
#include <utility>

#include <KXFoundation/Platform/Runtime/CallerError.h>

namespace kx {

GIFDecoder::GIFDecoder(const GIFReader& reader)
    : reader_(reader), plane_(reader.limits()), canvas_(reader.width(), reader.height()) {}

Result<GIFDecoder> GIFDecoder::open(std::span<const std::uint8_t> bytes, GIFLimits limits) {
    Result<GIFReader> reader = GIFReader::open(bytes, limits);
    if (!reader) return std::move(reader).error();
    return GIFDecoder(*reader);
}

Result<std::optional<GIFFrame>> GIFDecoder::next(GIFPixels pixels) {
    Result<std::optional<GIFFrame>> frame = reader_.next();
    if (!frame || !*frame) return frame;
    unpack(**frame);
    canvas_.paint(**frame, plane_.indices(), pixels);
    return frame;
}

Result<std::optional<GIFFrame>> GIFDecoder::next(GIFPixels pixels, GIFPixels previous) {
    Result<std::optional<GIFFrame>> frame = reader_.next();
    if (!frame || !*frame) return frame;
    unpack(**frame);
    canvas_.paint(**frame, plane_.indices(), pixels, previous);
    return frame;
}

void GIFDecoder::unpack(const GIFFrame& frame) {
    damage_.reset();
    if (Result<void> unpacked = plane_.unpack(frame); !unpacked) damage_ = std::move(unpacked).error();
}

bool GIFDecoder::isComplete(const GIFFrame& frame) {
    unpack(frame);
    return !damage_;
}

void GIFDecoder::rewind() noexcept {
    reader_.rewind();
    canvas_.restart();
    damage_.reset();
}

// A key frame counts only if its data are whole: where they are not, older pixels show.
std::size_t GIFDecoder::firstNeeded(const GIFContents& contents, std::size_t index) {
    const auto wholeKey = [&](std::size_t key) {
        return contents.frames[key].hidesCanvas(width(), height()) ? isComplete(contents.frames[key])
                                                                   : isComplete(contents.frames[key - 1]);
    };
    std::size_t key = contents.keyFrame(index, width(), height());
    while (key > 0 && !wholeKey(key)) key = contents.keyFrame(key - 1, width(), height());
    return key;
}

void GIFDecoder::composite(const GIFContents& contents, std::size_t index, GIFPixels pixels) {
    GIFCanvas canvas(width(), height());
    if (index >= contents.frames.size()) {
        callerError("GIFDecoder: frame " + std::to_string(index) + " of " + std::to_string(contents.frames.size()));
        canvas.paint({}, {}, pixels);
        return;
    }
    for (std::size_t i = firstNeeded(contents, index); i <= index; ++i) {
        unpack(contents.frames[i]);
        canvas.paint(contents.frames[i], plane_.indices(), pixels);
    }
}

}  // namespace kx
