// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>
#include <csetjmp>
#include <cstdio>
#include <cstdlib>
#include <cstring>
#include <string>

#include <jpeglib.h>

#include <KXFoundation/Platform/Graphics/ImageOrientation.h>
#include <KXFoundation/Platform/Graphics/JpegCodec.h>
#include <KXFoundation/Platform/Graphics/PixelAlpha.h>

// libjpeg reports an error by a call that must not return. It leaps back into the function that called
// libjpeg, so those functions hold nothing that has a destructor.
namespace kx {

namespace {

struct Failure : jpeg_error_mgr {
    std::jmp_buf leap;
    char message[JMSG_LENGTH_MAX] = "";
};

[[noreturn]] void fail(j_common_ptr codec) {
    auto& failure = static_cast<Failure&>(*codec->err);
    failure.format_message(codec, failure.message);
    std::longjmp(failure.leap, 1);
}

void prepare(Failure& failure) {
    jpeg_std_error(&failure);
    failure.error_exit = fail;
    failure.output_message = [](j_common_ptr) {};  // warnings: the picture is shown as far as it goes
}

Error failed(const Failure& failure) {
    return {ErrorKind::Corrupt, 0, std::string("JPEG: ") + failure.message};
}

/// A file of a few kilobytes can ask for thousands of passes over a huge picture.
struct ScanLimit : jpeg_progress_mgr {
    /// Encoders use up to about a dozen; more must bring a byte for each 1024 pixels that they pass over.
    void allowFor(std::size_t bytes, std::uint64_t pixels) {
        most = 32 + static_cast<int>(std::min<std::uint64_t>(bytes * 1024 / pixels, 10'000));
    }
    int most = 0;
};

void countScans(j_common_ptr codec) {
    const int most = static_cast<ScanLimit*>(codec->progress)->most;
    if (reinterpret_cast<j_decompress_ptr>(codec)->input_scan_number <= most) return;
    auto& failure = static_cast<Failure&>(*codec->err);
    std::snprintf(failure.message, sizeof failure.message, "more than %d scans", most);
    std::longjmp(failure.leap, 1);
}

struct Decoder {
    Decoder() {
        prepare(failure);
        codec.err = &failure;
        if (setjmp(failure.leap) != 0) std::abort();  // no memory
        jpeg_create_decompress(&codec);
        scans.progress_monitor = countScans;
        codec.progress = &scans;
    }
    ~Decoder() { jpeg_destroy_decompress(&codec); }
    Decoder(const Decoder&) = delete;
    Decoder& operator=(const Decoder&) = delete;

    Failure failure;
    ScanLimit scans{};
    jpeg_decompress_struct codec{};
};

constexpr int kExifMarker = JPEG_APP0 + 1;

bool readHeader(Decoder& decoder, std::span<const std::byte> data) {
    if (setjmp(decoder.failure.leap) != 0) return false;
    jpeg_mem_src(&decoder.codec, reinterpret_cast<const unsigned char*>(data.data()), data.size());
    jpeg_save_markers(&decoder.codec, kExifMarker, 0xFFFF);
    jpeg_read_header(&decoder.codec, TRUE);
    return true;
}

bool startReduced(Decoder& decoder, std::uint32_t leastWide, std::uint32_t leastHigh) {
    jpeg_decompress_struct& codec = decoder.codec;
    if (setjmp(decoder.failure.leap) != 0) return false;
    codec.out_color_space = codec.num_components == 4 ? JCS_CMYK : JCS_EXT_BGRA;
    for (codec.scale_denom = 8; codec.scale_denom > 1; codec.scale_denom /= 2) {
        codec.scale_num = 1;
        jpeg_calc_output_dimensions(&codec);
        if (codec.output_width >= leastWide && codec.output_height >= leastHigh) break;
    }
    codec.scale_num = 1;
    jpeg_calc_output_dimensions(&codec);
    return true;
}

bool readRows(Decoder& decoder, std::uint32_t* pixels) {
    jpeg_decompress_struct& codec = decoder.codec;
    if (setjmp(decoder.failure.leap) != 0) return false;
    jpeg_start_decompress(&codec);
    while (codec.output_scanline < codec.output_height) {
        auto* row =
            reinterpret_cast<JSAMPROW>(pixels + std::size_t{codec.output_scanline} * codec.output_width);
        jpeg_read_scanlines(&codec, &row, 1);
    }
    return true;
}

/// Inks as Adobe's programs store them, inverted, or as other programs do.
std::uint32_t pixelOfInks(std::uint32_t inks, bool isInverted) {
    unsigned char ink[4];
    std::memcpy(ink, &inks, sizeof ink);
    const auto light = [&](int i) -> std::uint32_t { return isInverted ? ink[i] : 255U - ink[i]; };
    const auto shown = [&](int i) { return (light(i) * light(3) + 127) / 255; };
    return 0xFF000000 | shown(0) << 16 | shown(1) << 8 | shown(2);
}

ImageOrientation orientationOf(const jpeg_decompress_struct& codec) {
    for (const auto* marker = codec.marker_list; marker; marker = marker->next) {
        const std::span data(reinterpret_cast<const std::byte*>(marker->data), marker->data_length);
        if (marker->marker == kExifMarker && isExif(data)) return exifOrientation(data);
    }
    return ImageOrientation::TopLeft;
}

}  // namespace

bool sniffJpeg(std::span<const std::byte> data) {
    return data.size() >= 3 && std::memcmp(data.data(), "\xFF\xD8\xFF", 3) == 0;
}

Result<PixelSize> jpegSize(std::span<const std::byte> data) {
    Decoder decoder;
    if (!readHeader(decoder, data)) return failed(decoder.failure);
    PixelSize size{decoder.codec.image_width, decoder.codec.image_height};
    if (orientationOf(decoder.codec) >= ImageOrientation::LeftTop) std::swap(size.wide, size.high);
    return size;
}

Result<std::shared_ptr<NSBitmapImageRep>> decodeJpeg(std::span<const std::byte> data) {
    return decodeJpegReduced(data, NSBitmapImageRep::kLongestSide, NSBitmapImageRep::kLongestSide);
}

Result<std::shared_ptr<NSBitmapImageRep>> decodeJpegReduced(std::span<const std::byte> data,
                                                            std::uint32_t leastWide,
                                                            std::uint32_t leastHigh) {
    Decoder decoder;
    jpeg_decompress_struct& codec = decoder.codec;
    if (!readHeader(decoder, data)) return failed(decoder.failure);
    const ImageOrientation orientation = orientationOf(codec);
    if (orientation >= ImageOrientation::LeftTop) std::swap(leastWide, leastHigh);
    // The size in the file, not the reduced one: libjpeg's own buffers follow the former.
    if (!NSBitmapImageRep::allows(codec.image_width, codec.image_height)) {
        return Error{ErrorKind::TooLarge, 0,
                     "JPEG of " + std::to_string(codec.image_width) + " x " +
                         std::to_string(codec.image_height) + " pixels"};
    }
    decoder.scans.allowFor(data.size(), std::uint64_t{codec.image_width} * codec.image_height);
    if (!startReduced(decoder, leastWide, leastHigh)) return failed(decoder.failure);
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(codec.output_width, codec.output_height);
    if (!bitmap) return Error{ErrorKind::TooLarge, 0, "JPEG: no memory for its pixels"};
    const auto pixels = bitmap->pixels();
    if (!readRows(decoder, pixels.data())) return failed(decoder.failure);
    if (codec.out_color_space == JCS_CMYK) {
        const bool isInverted = codec.saw_Adobe_marker != 0;
        std::ranges::transform(pixels, pixels.begin(),
                               [&](std::uint32_t inks) { return pixelOfInks(inks, isInverted); });
    }
    if (auto turned = upright(std::move(bitmap), orientation)) return turned;
    return Error{ErrorKind::TooLarge, 0, "JPEG: no memory for its pixels"};
}

namespace {

struct Encoder {
    Encoder() {
        prepare(failure);
        codec.err = &failure;
        if (setjmp(failure.leap) != 0) std::abort();  // no memory
        jpeg_create_compress(&codec);
    }
    ~Encoder() {
        jpeg_destroy_compress(&codec);
        std::free(encoded);
    }
    Encoder(const Encoder&) = delete;
    Encoder& operator=(const Encoder&) = delete;

    Failure failure;
    jpeg_compress_struct codec{};
    unsigned char* encoded = nullptr;
    unsigned long size = 0;
};

bool writeRows(Encoder& encoder, const NSBitmapImageRep& bitmap, int quality, std::uint32_t* rowOverWhite) {
    jpeg_compress_struct& codec = encoder.codec;
    if (setjmp(encoder.failure.leap) != 0) return false;
    jpeg_mem_dest(&codec, &encoder.encoded, &encoder.size);
    codec.image_width = bitmap.pixelsWide();
    codec.image_height = bitmap.pixelsHigh();
    codec.input_components = 4;
    codec.in_color_space = JCS_EXT_BGRX;
    jpeg_set_defaults(&codec);
    jpeg_set_quality(&codec, quality, TRUE);
    jpeg_start_compress(&codec, TRUE);
    while (codec.next_scanline < codec.image_height) {
        const std::uint32_t* from =
            bitmap.pixels().data() + std::size_t{codec.next_scanline} * codec.image_width;
        std::transform(from, from + codec.image_width, rowOverWhite, overWhite);
        auto* row = reinterpret_cast<JSAMPROW>(rowOverWhite);
        jpeg_write_scanlines(&codec, &row, 1);
    }
    jpeg_finish_compress(&codec);
    return true;
}

}  // namespace

Result<std::vector<std::byte>> encodeJpeg(const NSBitmapImageRep& bitmap, double quality) {
    Encoder encoder;
    std::vector<std::uint32_t> row(bitmap.pixelsWide());
    const double held = std::isnan(quality) ? 0 : std::clamp(quality, 0.0, 1.0);
    const auto percent = static_cast<int>(held * 100 + 0.5);
    if (!writeRows(encoder, bitmap, percent, row.data())) return failed(encoder.failure);
    const auto* const bytes = reinterpret_cast<const std::byte*>(encoder.encoded);
    return std::vector<std::byte>(bytes, bytes + encoder.size);
}

}  // namespace kx
