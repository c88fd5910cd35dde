// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstring>
#include <memory>
#include <string>
#include <string_view>

#include <png.h>

#include <KXFoundation/Platform/Graphics/ImageOrientation.h>
#include <KXFoundation/Platform/Graphics/PixelAlpha.h>
#include <KXFoundation/Platform/Graphics/PngCodec.h>

namespace kx {

namespace {

Error pngError(const png_image& image) {
    return {ErrorKind::Corrupt, 0, std::string("PNG: ") + image.message};
}

/// libpng's state of one picture; it reports errors without leaping over our frames.
struct PngImage : png_image {
    PngImage() : png_image{} { version = PNG_IMAGE_VERSION; }
    ~PngImage() { png_image_free(this); }
    PngImage(const PngImage&) = delete;
    PngImage& operator=(const PngImage&) = delete;
};

constexpr std::size_t kSignatureSize = 8, kLengthSize = 4, kTypeSize = 4, kFrameSize = 12;

std::size_t numberAt(std::span<const std::byte> data) {
    std::size_t number = 0;
    for (const std::byte byte : data.first(kLengthSize))
        number = number << 8 | std::to_integer<std::size_t>(byte);
    return number;
}

/// Whether the picture's look depends on it: all that must be understood, and some that need not.
bool isShown(std::string_view type) {
    constexpr std::string_view kColours[] = {"tRNS", "bKGD", "cHRM", "gAMA", "iCCP", "sBIT", "sRGB"};
    const bool isAncillary = (type[0] & 0x20) != 0;
    return !isAncillary || std::ranges::find(kColours, type) != std::end(kColours);
}

/// A file's chunks, taken apart before libpng sees them: it would unpack all texts on its way to the picture,
/// a thousand times their size.
struct PngChunks {
    explicit PngChunks(std::span<const std::byte> data) {
        const auto keep = [&](std::span<const std::byte> some) {
            shown.insert(shown.end(), some.begin(), some.end());
        };
        shown.reserve(data.size());
        keep(data.first(kSignatureSize));
        data = data.subspan(kSignatureSize);
        while (data.size() >= kFrameSize) {
            const std::size_t length = std::min(numberAt(data), data.size() - kFrameSize);
            const std::string_view type(reinterpret_cast<const char*>(data.data()) + kLengthSize, kTypeSize);
            if (isShown(type)) keep(data.first(kFrameSize + length));
            if (type == "eXIf") orientation = exifOrientation(data.subspan(kLengthSize + kTypeSize, length));
            data = data.subspan(kFrameSize + length);
        }
    }

    std::vector<std::byte> shown;  ///< a file without the others
    ImageOrientation orientation = ImageOrientation::TopLeft;
};

bool isOpaque(std::uint32_t pixel) {
    return channel(pixel, 24) == 255;
}

}  // namespace

bool sniffPng(std::span<const std::byte> data) {
    return data.size() >= 8 && std::memcmp(data.data(), "\x89PNG\r\n\x1a\n", 8) == 0;
}

Result<std::shared_ptr<NSBitmapImageRep>> decodePng(std::span<const std::byte> data) {
    if (!sniffPng(data)) return Error{ErrorKind::Corrupt, 0, "PNG: another format"};
    const PngChunks chunks(data);
    PngImage image;
    if (!png_image_begin_read_from_memory(&image, chunks.shown.data(), chunks.shown.size()))
        return pngError(image);
    if (!NSBitmapImageRep::allows(image.width, image.height)) {
        return Error{
            ErrorKind::TooLarge, 0,
            "PNG of " + std::to_string(image.width) + " x " + std::to_string(image.height) + " pixels"};
    }
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(image.width, image.height);
    if (!bitmap) return Error{ErrorKind::TooLarge, 0, "PNG: no memory for its pixels"};
    image.flags |= PNG_IMAGE_FLAG_16BIT_sRGB;
    image.format = PNG_FORMAT_BGRA;
    const auto pixels = bitmap->pixels();
    if (!png_image_finish_read(&image, nullptr, pixels.data(), 0, nullptr)) return pngError(image);
    std::transform(pixels.begin(), pixels.end(), pixels.begin(), premultiplied);
    if (auto turned = upright(std::move(bitmap), chunks.orientation)) return turned;
    return Error{ErrorKind::TooLarge, 0, "PNG: no memory for its pixels"};
}

Result<std::vector<std::byte>> encodePng(const NSBitmapImageRep& bitmap) {
    PngImage image;
    image.width = bitmap.pixelsWide();
    image.height = bitmap.pixelsHigh();
    image.format = PNG_FORMAT_BGRA;
    image.flags = PNG_IMAGE_FLAG_FAST;
    // An opaque picture, as of a window, is written as it lies.
    std::unique_ptr<std::uint32_t[]> straightened;
    if (!std::ranges::all_of(bitmap.pixels(), isOpaque)) {
        straightened = std::make_unique_for_overwrite<std::uint32_t[]>(bitmap.pixels().size());
        std::transform(bitmap.pixels().begin(), bitmap.pixels().end(), straightened.get(), straight);
    }
    const std::uint32_t* const pixels = straightened ? straightened.get() : bitmap.pixels().data();
    // Not cleared first: of the room for the worst case most pictures touch a small part.
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    const auto encoded = std::make_unique_for_overwrite<std::byte[]>(size);
    if (!png_image_write_to_memory(&image, encoded.get(), &size, 0, pixels, 0, nullptr)) {
        return pngError(image);
    }
    return std::vector<std::byte>(encoded.get(), encoded.get() + size);
}

}  // namespace kx
