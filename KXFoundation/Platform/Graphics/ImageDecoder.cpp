#include <KXFoundation/Platform/Graphics/GIF/GIFImage.h>
#include <KXFoundation/Platform/Graphics/ImageDecoder.h>
#include <KXFoundation/Platform/Graphics/JpegCodec.h>
#include <KXFoundation/Platform/Graphics/PngCodec.h>
#include <KXFoundation/Platform/Graphics/TiffCodec.h>
#include <KXFoundation/Platform/Graphics/WebpCodec.h>

namespace kx {

namespace {

constexpr ImageFormat kFormats[] = {
    {"GIF", sniffGif, decodeGif},    {"JPEG", sniffJpeg, decodeJpeg}, {"PNG", sniffPng, decodePng},
    {"TIFF", sniffTiff, decodeTiff}, {"WebP", sniffWebp, decodeWebp},
};

}  // namespace

const ImageFormat* imageFormatOf(std::span<const std::byte> data) {
    for (const ImageFormat& format : kFormats) {
        if (format.sniff(data)) return &format;
    }
    return nullptr;
}

Result<std::shared_ptr<NSBitmapImageRep>> decodeImage(std::span<const std::byte> data) {
    if (const ImageFormat* format = imageFormatOf(data)) return format->decode(data);
    return Error{ErrorKind::Unsupported, 0, "unknown picture format"};
}

}  // namespace kx
