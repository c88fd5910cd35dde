// SPDX-License-Identifier: MIT

#include <algorithm>
#include <csetjmp>
#include <cstring>
#include <memory>
#include <new>
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

/// Row by row, so that no picture is held a second time to give its colours their full strength. An opaque
/// one, as of a window, is written without its alpha: a tenth smaller, and in two thirds of the time.
struct PngWriting {
    PngWriting() : png(png_create_write_struct(PNG_LIBPNG_VER_STRING, this, takeReason, ignoreWarning)) {
        info = png ? png_create_info_struct(png) : nullptr;
    }
    ~PngWriting() { png_destroy_write_struct(&png, &info); }
    PngWriting(const PngWriting&) = delete;
    PngWriting& operator=(const PngWriting&) = delete;

    bool write(const NSBitmapImageRep& bitmap);

    png_structp png;
    png_infop info = nullptr;
    std::vector<std::byte> encoded;
    std::vector<std::uint32_t> row;  ///< not of an opaque picture
    const char* reason = "no memory";

  private:
    void begin(const NSBitmapImageRep& bitmap);
    void writeRows(const NSBitmapImageRep& bitmap);

    [[noreturn]] static void takeReason(png_structp png, png_const_charp words) {
        static_cast<PngWriting*>(png_get_error_ptr(png))->reason = words;
        png_longjmp(png, 1);
    }
    static void ignoreWarning(png_structp, png_const_charp) {}
    static void append(png_structp png, png_bytep data, std::size_t size) {
        const auto* const bytes = reinterpret_cast<const std::byte*>(data);
        auto& encoded = static_cast<PngWriting*>(png_get_io_ptr(png))->encoded;
        bool isKept = true;
        try {
            encoded.insert(encoded.end(), bytes, bytes + size);
        } catch (const std::bad_alloc&) {
            isKept = false;  // no exception may pass through libpng, and no leap out of a handler
        }
        if (!isKept) png_error(png, "no memory");
    }
    static void flush(png_structp) {}
};

/// libpng leaps back to here, over frames that have nothing to destroy.
bool PngWriting::write(const NSBitmapImageRep& bitmap) {
    if (!info || setjmp(png_jmpbuf(png))) return false;
    begin(bitmap);
    writeRows(bitmap);
    png_write_end(png, nullptr);
    return true;
}

void PngWriting::begin(const NSBitmapImageRep& bitmap) {
    const bool opaque = std::ranges::all_of(bitmap.pixels(), isOpaque);
    if (!opaque) row.resize(bitmap.pixelsWide());
    png_set_write_fn(png, this, append, flush);
    png_set_IHDR(png, info, bitmap.pixelsWide(), bitmap.pixelsHigh(), 8,
                 opaque ? PNG_COLOR_TYPE_RGB : PNG_COLOR_TYPE_RGB_ALPHA, PNG_INTERLACE_NONE,
                 PNG_COMPRESSION_TYPE_DEFAULT, PNG_FILTER_TYPE_DEFAULT);
    png_set_sRGB(png, info, PNG_sRGB_INTENT_PERCEPTUAL);
    png_set_filter(png, PNG_FILTER_TYPE_BASE, PNG_NO_FILTERS);
    png_set_compression_level(png, 3);
    // Half of the usual memory, 128 KiB, for files that are 1.5 % larger at most.
    png_set_compression_mem_level(png, 7);
    png_set_compression_window_bits(png, 14);
    png_write_info(png, info);
    png_set_bgr(png);
    if (opaque) png_set_filler(png, 0, PNG_FILLER_AFTER);
}

void PngWriting::writeRows(const NSBitmapImageRep& bitmap) {
    const std::size_t width = bitmap.pixelsWide();
    const std::span<const std::uint32_t> pixels = bitmap.pixels();
    for (std::size_t y = 0; y < bitmap.pixelsHigh(); ++y) {
        const auto shown = pixels.subspan(y * width, width);
        if (!row.empty()) std::ranges::transform(shown, row.begin(), straight);
        png_write_row(png, reinterpret_cast<png_const_bytep>(row.empty() ? shown.data() : row.data()));
    }
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
    PngWriting writing;
    if (writing.write(bitmap)) return std::move(writing.encoded);
    return Error{ErrorKind::Failed, 0, std::string("PNG: ") + writing.reason};
}

}  // namespace kx
