// SPDX-License-Identifier: MIT

#include <utility>
#include <vector>

#include <KXFoundation/Platform/Graphics/GIF/GIFImage.h>
#include <KXFoundation/Platform/Graphics/ImageDecoder.h>
#include <KXFoundation/Platform/Graphics/JpegCodec.h>
#include <KXFoundation/Platform/Graphics/PngCodec.h>
#include <KXFoundation/Platform/Graphics/TiffCodec.h>
#include <KXFoundation/Platform/Graphics/WebpCodec.h>
#include <KXFoundation/Platform/Runtime/FileSystem.h>

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

Result<std::shared_ptr<NSBitmapImageRep>> decodeImageKeepingData(Value data) {
    auto bitmap = decodeImage(data.asData().value_or(std::span<const std::byte>()));
    if (bitmap) (*bitmap)->setEncodedData(std::move(data));
    return bitmap;
}

Result<Value> readImageFile(const std::string& path, std::uint64_t limit) {
    const auto file = FileSystem::slot().current().open(path, FileSystem::Mode::Read);
    if (!file) return file.error();
    const auto size = (*file)->size();
    if (!size) return size.error();
    if (*size > limit) return Error{ErrorKind::TooLarge, 0, path};
    std::vector<std::byte> bytes(*size);
    const auto read = (*file)->readAt(0, bytes);
    if (!read) return read.error();
    bytes.resize(*read);
    return Value::data(std::move(bytes));
}

}  // namespace kx
