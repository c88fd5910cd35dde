// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Platform/Graphics/GIF/GIFDecoder.h>

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

void GIFDecoder::rewind() noexcept {
    reader_.rewind();
    canvas_.restart();
    damage_.reset();
}

}  // namespace kx
