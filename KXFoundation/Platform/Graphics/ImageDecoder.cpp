#include <KXFoundation/Platform/Graphics/ImageDecoder.h>
#include <KXFoundation/Platform/Graphics/PngCodec.h>

namespace kx {

namespace {

constexpr ImageFormat kFormats[] = {
    {"PNG", sniffPng, decodePng},
};

}  // namespace

Result<std::shared_ptr<NSBitmapImageRep>> decodeImage(std::span<const std::byte> data) {
    for (const ImageFormat& format : kFormats) {
        if (format.sniff(data)) return format.decode(data);
    }
    return Error{ErrorKind::Unsupported, 0, "unknown picture format"};
}

}  // namespace kx
