// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstdarg>
#include <cstdio>
#include <cstring>
#include <memory>
#include <vector>

#include <tiffio.h>

#include <KXFoundation/Platform/Graphics/PixelAlpha.h>
#include <KXFoundation/Platform/Graphics/TiffModule.h>
#include <KXFoundation/Platform/Runtime/Module.h>

namespace kx {

namespace {

/// Of libtiff at once: a picture's pixels in the largest form that it knows, and its own tables.
tmsize_t largestAllocation(std::uint64_t mostPixels) {
    return static_cast<tmsize_t>(std::min(mostPixels, std::uint64_t{1} << 32) * 8 + (std::uint64_t{4} << 20));
}

/// Thousands of a picture's parts may claim the same bytes. Twice all bytes, and this much, may be read.
constexpr std::size_t kReadAgain = std::size_t{32} << 20;

/// A file in memory, for libtiff's calls.
struct Stream {
    const std::byte* readFrom = nullptr;
    std::vector<std::byte> written;
    std::size_t size = 0;
    std::size_t at = 0;
    std::size_t readable = SIZE_MAX;

    static Stream& of(thandle_t handle) { return *static_cast<Stream*>(handle); }
};

tmsize_t readSome(thandle_t handle, void* into, tmsize_t count) {
    Stream& stream = Stream::of(handle);
    const std::byte* const from = stream.readFrom ? stream.readFrom : stream.written.data();
    const std::size_t left = stream.at < stream.size ? stream.size - stream.at : 0;
    const std::size_t some =
        std::min({left, stream.readable, static_cast<std::size_t>(std::max<tmsize_t>(count, 0))});
    stream.readable -= some;
    if (some > 0) std::memcpy(into, from + stream.at, some);
    stream.at += some;
    return static_cast<tmsize_t>(some);
}

tmsize_t writeAll(thandle_t handle, void* data, tmsize_t count) {
    Stream& stream = Stream::of(handle);
    const auto size = static_cast<std::size_t>(count);
    if (stream.at + size > stream.written.size()) stream.written.resize(stream.at + size);
    std::memcpy(stream.written.data() + stream.at, data, size);
    stream.at += size;
    stream.size = stream.written.size();
    return count;
}

toff_t seek(thandle_t handle, toff_t offset, int from) {
    Stream& stream = Stream::of(handle);
    stream.at = static_cast<std::size_t>(offset) + (from == SEEK_CUR   ? stream.at
                                                    : from == SEEK_END ? stream.size
                                                                       : 0);
    return stream.at;
}

toff_t sizeOf(thandle_t handle) {
    return Stream::of(handle).size;
}

/// The first thing that libtiff complained about.
struct Reason {
    char* text;
    std::size_t size;
};

int takeError(TIFF*, void* reason, const char*, const char* format, std::va_list arguments) {
    const auto [text, size] = *static_cast<Reason*>(reason);
    if (size > 0 && !text[0]) std::vsnprintf(text, size, format, arguments);
    return 1;
}

using File = std::unique_ptr<TIFF, void (*)(TIFF*)>;

File open(Stream& stream, const char* mode, tmsize_t largest, Reason& reason) {
    TIFFOpenOptions* const options = TIFFOpenOptionsAlloc();
    TIFFOpenOptionsSetMaxSingleMemAlloc(options, largest);
    TIFFOpenOptionsSetErrorHandlerExtR(options, takeError, &reason);
    TIFFOpenOptionsSetWarningHandlerExtR(
        options, [](TIFF*, void*, const char*, const char*, std::va_list) { return 1; }, nullptr);
    TIFF* const file = TIFFClientOpenExt(
        "picture", mode, &stream, readSome, writeAll, seek, [](thandle_t) { return 0; }, sizeOf,
        [](thandle_t, void**, toff_t*) { return 0; }, [](thandle_t, void*, toff_t) {}, options);
    TIFFOpenOptionsFree(options);
    return {file, TIFFClose};
}

/// libtiff's 0xAABBGGRR. What a file says is multiplied by its alpha already comes as it is, colours that
/// cannot be included.
std::uint32_t argb(std::uint32_t abgr) {
    const std::uint32_t alpha = abgr >> 24;
    const auto held = [&](int shift) { return std::min(channel(abgr, shift), alpha); };
    return alpha << 24 | held(0) << 16 | held(8) << 8 | held(16);
}

bool read(const void* data, std::size_t size, std::uint64_t mostPixels, TiffModule::Allocate allocate,
          void* context, std::uint32_t* orientation, char* text, std::size_t textSize) {
    Reason reason{text, textSize};
    text[0] = 0;
    Stream stream{.readFrom = static_cast<const std::byte*>(data),
                  .written = {},
                  .size = size,
                  .readable = 2 * size + kReadAgain};
    const File file = open(stream, "rm", largestAllocation(mostPixels), reason);
    if (!file) return false;
    TIFFRGBAImage image{};
    char begun[1024] = "";
    if (!TIFFRGBAImageBegin(&image, file.get(), 1, begun)) {
        std::snprintf(text, textSize, "%s", begun);
        return false;
    }
    *orientation = image.orientation;
    image.orientation = image.req_orientation = ORIENTATION_TOPLEFT;  // the caller turns it
    std::uint32_t* const pixels = allocate(context, image.width, image.height);
    const bool isRead = pixels && TIFFRGBAImageGet(&image, pixels, image.width, image.height) != 0;
    if (isRead) std::transform(pixels, pixels + std::size_t{image.width} * image.height, pixels, argb);
    TIFFRGBAImageEnd(&image);
    return isRead;
}

void describe(TIFF* file, std::uint32_t wide, std::uint32_t high) {
    const std::uint16_t alpha = EXTRASAMPLE_UNASSALPHA;
    TIFFSetField(file, TIFFTAG_IMAGEWIDTH, wide);
    TIFFSetField(file, TIFFTAG_IMAGELENGTH, high);
    TIFFSetField(file, TIFFTAG_BITSPERSAMPLE, 8);
    TIFFSetField(file, TIFFTAG_SAMPLESPERPIXEL, 4);
    TIFFSetField(file, TIFFTAG_EXTRASAMPLES, 1, &alpha);
    TIFFSetField(file, TIFFTAG_PHOTOMETRIC, PHOTOMETRIC_RGB);
    TIFFSetField(file, TIFFTAG_PLANARCONFIG, PLANARCONFIG_CONTIG);
    TIFFSetField(file, TIFFTAG_ORIENTATION, ORIENTATION_TOPLEFT);
    TIFFSetField(file, TIFFTAG_COMPRESSION, COMPRESSION_LZW);
    TIFFSetField(file, TIFFTAG_PREDICTOR, PREDICTOR_HORIZONTAL);
    TIFFSetField(file, TIFFTAG_ROWSPERSTRIP, TIFFDefaultStripSize(file, 0));
}

bool write(const std::uint32_t* pixels, std::uint32_t wide, std::uint32_t high, TiffModule::Take take,
           void* context, char* text, std::size_t textSize) {
    Reason reason{text, textSize};
    text[0] = 0;
    Stream stream;
    {
        const File file = open(stream, "wm", largestAllocation(std::uint64_t{wide} * high), reason);
        if (!file) return false;
        describe(file.get(), wide, high);
        std::vector<std::uint8_t> row(std::size_t{wide} * 4);
        for (std::uint32_t y = 0; y < high; ++y) {
            for (std::uint32_t x = 0; x < wide; ++x) {
                const std::uint32_t pixel = straight(pixels[std::size_t{y} * wide + x]);
                const std::uint8_t samples[] = {std::uint8_t(pixel >> 16), std::uint8_t(pixel >> 8),
                                                std::uint8_t(pixel), std::uint8_t(pixel >> 24)};
                std::copy(std::begin(samples), std::end(samples), row.begin() + std::ptrdiff_t{x} * 4);
            }
            if (TIFFWriteScanline(file.get(), row.data(), y, 0) < 0) return false;
        }
        if (!TIFFFlush(file.get())) return false;
    }
    take(context, stream.written.data(), stream.written.size());
    return true;
}

constexpr TiffModule kModule{.version = TiffModule::kVersion, .read = read, .write = write};

}  // namespace

}  // namespace kx

extern "C" __attribute__((visibility("default"))) const void* kxModule(const kx::ModuleHost*) {
    return &kx::kModule;
}
