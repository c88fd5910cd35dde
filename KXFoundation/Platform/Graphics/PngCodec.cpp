#include <algorithm>
#include <cstring>
#include <string>

#include <png.h>

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

}  // namespace

bool sniffPng(std::span<const std::byte> data) {
    return data.size() >= 8 && std::memcmp(data.data(), "\x89PNG\r\n\x1a\n", 8) == 0;
}

Result<std::shared_ptr<NSBitmapImageRep>> decodePng(std::span<const std::byte> data) {
    PngImage image;
    if (!png_image_begin_read_from_memory(&image, data.data(), data.size())) return pngError(image);
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
    return bitmap;
}

Result<std::vector<std::byte>> encodePng(const NSBitmapImageRep& bitmap) {
    PngImage image;
    image.width = bitmap.pixelsWide();
    image.height = bitmap.pixelsHigh();
    image.format = PNG_FORMAT_BGRA;
    image.flags = PNG_IMAGE_FLAG_FAST;
    std::vector<std::uint32_t> pixels(bitmap.pixels().size());
    std::transform(bitmap.pixels().begin(), bitmap.pixels().end(), pixels.begin(), straight);
    png_alloc_size_t size = PNG_IMAGE_PNG_SIZE_MAX(image);
    std::vector<std::byte> encoded(size);
    if (!png_image_write_to_memory(&image, encoded.data(), &size, 0, pixels.data(), 0, nullptr)) {
        return pngError(image);
    }
    encoded.resize(size);
    return encoded;
}

}  // namespace kx
