// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstdlib>
#include <cstring>

#include <gtest/gtest.h>
#include <jpeglib.h>
#include <webp/encode.h>
#include <webp/mux.h>

#include <KXFoundation/Platform/Graphics/ImageDecoder.h>
#include <KXFoundation/Platform/Graphics/JpegCodec.h>
#include <KXFoundation/Platform/Graphics/PngCodec.h>
#include <KXFoundation/Platform/Graphics/TiffCodec.h>
#include <KXFoundation/Testing/PictureComparison.h>

namespace kx {
namespace {

using testing::distance;
using Bytes = std::vector<std::byte>;

/// Four colours, one in each quarter; the last one half transparent if wanted.
std::shared_ptr<NSBitmapImageRep> quarters(std::uint32_t wide, std::uint32_t high, std::uint32_t last) {
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(wide, high);
    for (std::uint32_t i = 0; i < wide * high; ++i) {
        const bool right = i % wide >= wide / 2, low = i / wide >= high / 2;
        bitmap->pixels()[i] = low ? (right ? last : 0xFF00C000) : (right ? 0xFF2040E0 : 0xFFE02020);
    }
    return bitmap;
}

/// The colours in the middle of the quarters: top left, top right, bottom left, bottom right.
void expectCorners(const Result<std::shared_ptr<NSBitmapImageRep>>& decoded,
                   const std::array<std::uint32_t, 4>& want, const std::string& what, int tolerance = 12) {
    ASSERT_TRUE(decoded.ok()) << what << ": " << decoded.error().message();
    const std::uint32_t wide = (*decoded)->pixelsWide(), high = (*decoded)->pixelsHigh();
    for (std::uint32_t i = 0; i < 4; ++i) {
        const std::uint32_t got = (*decoded)->pixelAt(wide * (1 + i % 2 * 2) / 4, high * (1 + i / 2 * 2) / 4);
        EXPECT_LE(distance(got, want[i]), tolerance)
            << what << ", corner " << i << ": " << std::hex << got << " for " << want[i];
    }
}

const std::array<std::uint32_t, 4> kOpaque{0xFFE02020, 0xFF2040E0, 0xFF00C000, 0xFFF0F000};

struct JpegKind {
    const char* name;
    int components;
    J_COLOR_SPACE in, file;
    bool progressive, adobe;
};

/// A JPEG of another kind than our encoder writes.
Bytes jpeg(const NSBitmapImageRep& bitmap, const JpegKind& kind) {
    jpeg_error_mgr errors;
    jpeg_compress_struct codec{};
    codec.err = jpeg_std_error(&errors);
    jpeg_create_compress(&codec);
    unsigned char* encoded = nullptr;
    unsigned long size = 0;
    jpeg_mem_dest(&codec, &encoded, &size);
    codec.image_width = bitmap.pixelsWide();
    codec.image_height = bitmap.pixelsHigh();
    codec.input_components = kind.components;
    codec.in_color_space = kind.in;
    jpeg_set_defaults(&codec);
    jpeg_set_colorspace(&codec, kind.file);
    codec.write_Adobe_marker = static_cast<boolean>(kind.adobe);
    jpeg_set_quality(&codec, 95, TRUE);
    if (kind.progressive) jpeg_simple_progression(&codec);
    jpeg_start_compress(&codec, TRUE);
    const bool isInverted = kind.components == 4 && !kind.adobe;
    std::vector<unsigned char> row(std::size_t{bitmap.pixelsWide()} * 4);
    while (codec.next_scanline < codec.image_height) {
        unsigned char* at = row.data();
        for (std::uint32_t x = 0; x < bitmap.pixelsWide(); ++x) {
            const std::uint32_t pixel = bitmap.pixelAt(x, codec.next_scanline);
            const std::uint32_t light[] = {pixel >> 16, pixel >> 8, pixel,
                                           255};  // inks of these, and no black
            for (int i = 0; i < kind.components; ++i)
                *at++ = static_cast<unsigned char>(isInverted ? ~light[i] : light[i]);
        }
        JSAMPROW start = row.data();
        jpeg_write_scanlines(&codec, &start, 1);
    }
    jpeg_finish_compress(&codec);
    const auto* bytes = reinterpret_cast<std::byte*>(encoded);
    Bytes result(bytes, bytes + size);
    jpeg_destroy_compress(&codec);
    std::free(encoded);
    return result;
}

/// An Exif block of one entry, in either byte order.
std::string exif(int orientation, bool isBigEndian) {
    const std::string big("MM\0*\0\0\0\x08\0\x01\x01\x12\0\x03\0\0\0\x01\0", 19);
    const std::string little("II*\0\x08\0\0\0\x01\0\x12\x01\x03\0\x01\0\0\0", 18);
    const char value = static_cast<char>(orientation);
    return isBigEndian ? big + value + std::string(6, '\0') : little + value + std::string(7, '\0');
}

Bytes withExif(Bytes jpeg, const std::string& block) {
    const std::size_t size = block.size() + 8;
    std::string segment = "\xFF\xE1";
    segment += {static_cast<char>(size >> 8), static_cast<char>(size), 'E', 'x', 'i', 'f', 0, 0};
    segment += block;
    const auto* bytes = reinterpret_cast<const std::byte*>(segment.data());
    jpeg.insert(jpeg.begin() + 2, bytes, bytes + segment.size());
    return jpeg;
}

Bytes webp(const NSBitmapImageRep& straight, bool lossless, const std::string& exifBlock = {}) {
    const auto wide = static_cast<int>(straight.pixelsWide()), high = static_cast<int>(straight.pixelsHigh());
    const auto* pixels = reinterpret_cast<const std::uint8_t*>(straight.pixels().data());
    WebPData data{};
    std::uint8_t* encoded = nullptr;
    data.size = lossless ? WebPEncodeLosslessBGRA(pixels, wide, high, wide * 4, &encoded)
                         : WebPEncodeBGRA(pixels, wide, high, wide * 4, 90, &encoded);
    data.bytes = encoded;
    WebPMux* const mux = WebPMuxCreate(&data, 1);
    if (!exifBlock.empty()) {
        const WebPData chunk{reinterpret_cast<const std::uint8_t*>(exifBlock.data()), exifBlock.size()};
        WebPMuxSetChunk(mux, "EXIF", &chunk, 1);
    }
    WebPData whole{};
    WebPMuxAssemble(mux, &whole);
    const auto* bytes = reinterpret_cast<const std::byte*>(whole.bytes);
    Bytes result(bytes, bytes + whole.size);
    WebPDataClear(&whole);
    WebPMuxDelete(mux);
    WebPFree(encoded);
    return result;
}

TEST(Jpeg, ReadsEveryKindOfColour) {
    const auto picture = quarters(64, 48, kOpaque[3]);
    const JpegKind kinds[] = {
        {"baseline", 3, JCS_RGB, JCS_YCbCr, false, false},
        {"progressive", 3, JCS_RGB, JCS_YCbCr, true, false},
        {"RGB", 3, JCS_RGB, JCS_RGB, false, true},
        {"CMYK", 4, JCS_CMYK, JCS_CMYK, false, false},
        {"Adobe CMYK", 4, JCS_CMYK, JCS_CMYK, false, true},
        {"YCCK", 4, JCS_CMYK, JCS_YCCK, true, true},
    };
    for (const JpegKind& kind : kinds) expectCorners(decodeImage(jpeg(*picture, kind)), kOpaque, kind.name);
    const JpegKind grey{"grey", 1, JCS_GRAYSCALE, JCS_GRAYSCALE, false, false};
    const auto decoded = decodeImage(jpeg(*picture, grey));
    ASSERT_TRUE(decoded.ok());
    EXPECT_LE(distance((*decoded)->pixelAt(8, 8), 0xFFE0E0E0), 2);
}

TEST(Jpeg, IsTurnedAsTheCameraWasHeld) {
    // a b / c d as seen; the rows below say which stored corner stands where.
    const auto stored = quarters(64, 48, kOpaque[3]);
    const auto encoded = encodeJpeg(*stored, 0.95);
    ASSERT_TRUE(encoded.ok());
    constexpr int seen[8][4] = {{0, 1, 2, 3}, {1, 0, 3, 2}, {3, 2, 1, 0}, {2, 3, 0, 1},
                                {0, 2, 1, 3}, {2, 0, 3, 1}, {3, 1, 2, 0}, {1, 3, 0, 2}};
    for (int orientation = 1; orientation <= 8; ++orientation) {
        std::array<std::uint32_t, 4> want;
        for (std::size_t i = 0; i < 4; ++i)
            want[i] = kOpaque[static_cast<std::size_t>(seen[orientation - 1][i])];
        for (const bool isBigEndian : {false, true}) {
            const auto decoded = decodeImage(withExif(*encoded, exif(orientation, isBigEndian)));
            expectCorners(decoded, want, "orientation " + std::to_string(orientation));
            EXPECT_EQ((*decoded)->pixelsWide(), orientation < 5 ? 64U : 48U);
        }
    }
    for (const std::string& broken : {exif(9, true), exif(0, false), std::string("MM\0*\xFF\xFF\xFF\xFF", 8),
                                      std::string(), exif(6, true).substr(0, 15)})
        expectCorners(decodeImage(withExif(*encoded, broken)), kOpaque, "damaged Exif");
}

TEST(Jpeg, IsReducedWhileItIsUnpackedButNeverBelowWhatIsAskedFor) {
    const auto encoded = encodeJpeg(*quarters(640, 480, kOpaque[3]), 0.9);
    ASSERT_TRUE(encoded.ok());
    const std::uint32_t rows[][4] = {{80, 60, 80, 60},
                                     {81, 60, 160, 120},
                                     {320, 10, 320, 240},
                                     {321, 1, 640, 480},
                                     {9999, 9999, 640, 480}};
    for (const auto& [leastWide, leastHigh, wide, high] : rows) {
        const auto decoded = decodeJpegReduced(*encoded, leastWide, leastHigh);
        expectCorners(decoded, kOpaque, "reduced");
        EXPECT_EQ((*decoded)->pixelsWide(), wide);
        EXPECT_EQ((*decoded)->pixelsHigh(), high);
    }
}

TEST(Jpeg, WritesWhatIsTransparentOverWhite) {
    const auto encoded = encodeJpeg(*quarters(64, 48, 0x80400000), 0.95);
    ASSERT_TRUE(encoded.ok());
    expectCorners(decodeImage(*encoded), {kOpaque[0], kOpaque[1], kOpaque[2], 0xFFBF7F7F},
                  "half transparent red");
}

TEST(Webp, ReadsBothKindsWithAlphaAndOrientation) {
    const auto straight = quarters(64, 48, 0x80FF0000);
    const std::array<std::uint32_t, 4> want{kOpaque[0], kOpaque[1], kOpaque[2], 0x80800000};
    expectCorners(decodeImage(webp(*straight, true)), want, "lossless", 1);
    expectCorners(decodeImage(webp(*straight, false)), want, "lossy");
    for (const std::string& name : {std::string(), std::string("Exif\0\0", 6)})
        expectCorners(decodeImage(webp(*straight, true, name + exif(3, true))),
                      {want[3], want[2], want[1], want[0]}, "upside down", 1);
}

TEST(Tiff, ComesBackAsItWasWritten) {
    const auto bitmap = quarters(37, 29, 0x80804010);
    const auto encoded = encodeTiff(*bitmap);
    ASSERT_TRUE(encoded.ok()) << encoded.error().message();
    const auto decoded = decodeImage(*encoded);
    ASSERT_TRUE(decoded.ok()) << decoded.error().message();
    ASSERT_EQ((*decoded)->pixels().size(), bitmap->pixels().size());
    for (std::size_t i = 0; i < bitmap->pixels().size(); ++i)
        ASSERT_LE(distance((*decoded)->pixels()[i], bitmap->pixels()[i]), 1) << i;

    const auto saying = [&](std::byte tag, std::byte value) {
        Bytes file = *encoded;
        const std::byte entry[] = {tag, std::byte{1}, std::byte{3}, std::byte{0}};  // 256 + tag, words
        *(std::find_end(file.begin(), file.end(), std::begin(entry), std::end(entry)) + 8) = value;
        return decodeImage(file);
    };
    const std::array<std::uint32_t, 4> want{kOpaque[0], kOpaque[1], kOpaque[2], 0x80804010};
    expectCorners(saying(std::byte{0x12}, std::byte{3}), {want[3], want[2], want[1], want[0]}, "turned", 1);
    // That its colours, which are straight, are premultiplied.
    expectCorners(saying(std::byte{0x52}, std::byte{1}), {want[0], want[1], want[2], 0x80808020}, "lying", 1);
}

/// A chunk whose check sum is wrong, which nobody sees where it is passed over.
Bytes pngChunk(const std::string& type, const std::string& body) {
    std::string chunk;
    for (int shift = 24; shift >= 0; shift -= 8) chunk += static_cast<char>(body.size() >> shift);
    chunk += type + body + std::string(4, '\0');
    const auto* bytes = reinterpret_cast<const std::byte*>(chunk.data());
    return {bytes, bytes + chunk.size()};
}

TEST(Png, IsTurnedAndItsOtherChunksArePassedOver) {
    Bytes file = *encodePng(*quarters(64, 48, kOpaque[3]));
    for (const Bytes& chunk : {pngChunk("eXIf", exif(3, true)),
                               pngChunk("prVt", std::string(9'000'000, 'x'))})  // libpng takes 8,000,000
        file.insert(file.begin() + 33, chunk.begin(), chunk.end());             // behind the header
    expectCorners(decodeImage(file), {kOpaque[3], kOpaque[2], kOpaque[1], kOpaque[0]}, "upside down", 0);
}

/// A column of pixels whose every row is the same megabyte of packing that packs nothing.
Bytes tiffOfOneStrip() {
    constexpr std::uint32_t kRows = 30'000, kPacked = 1'000'002, kPlaces = 8 + kPacked,
                            kSizes = kPlaces + 4 * kRows;
    Bytes file(kPlaces, std::byte{0x80});
    const auto add = [&](std::uint32_t value, int bytes) {
        for (int i = 0; i < bytes; ++i) file.push_back(static_cast<std::byte>(value >> 8 * i));
    };
    const std::uint32_t header[] = {0x002A4949, kSizes + 4 * kRows};
    std::memcpy(file.data(), header, sizeof header);
    std::fill(file.end() - 2, file.end(), std::byte{0});
    for (std::uint32_t i = 0; i < 2 * kRows; ++i) add(i < kRows ? 8 : kPacked, 4);
    const std::tuple<std::uint32_t, std::uint32_t, std::uint32_t> entries[] = {
        {256, 1, 1},           {257, 1, kRows}, {258, 1, 8}, {259, 1, 32'773},    {262, 1, 1},
        {273, kRows, kPlaces}, {277, 1, 1},     {278, 1, 1}, {279, kRows, kSizes}};
    add(std::size(entries), 2);
    for (const auto& [tag, count, value] : entries) {
        add(tag | 4 << 16, 4);
        add(count, 4);
        add(value, 4);
    }
    add(0, 4);
    return file;
}

/// A flat picture whose last pass comes a hundred times.
Bytes jpegOfManyScans() {
    Bytes file = jpeg(*quarters(1024, 1024, kOpaque[3]), {"", 1, JCS_GRAYSCALE, JCS_GRAYSCALE, true, false});
    const std::byte start[] = {std::byte{0xFF}, std::byte{0xDA}};
    const auto last = std::find_end(file.begin(), file.end(), std::begin(start), std::end(start));
    const Bytes scan(last, file.end() - 2);
    for (int i = 0; i < 100; ++i) file.insert(file.end() - 2, scan.begin(), scan.end());
    return file;
}

TEST(ImageDecoder, WorksNoLongerThanTheDataAreWorth) {
    EXPECT_FALSE(decodeImage(tiffOfOneStrip()).ok());
    EXPECT_FALSE(decodeImage(jpegOfManyScans()).ok());
}

/// Every file cut at every place and with every byte changed once: an answer, whichever, and no more pixels
/// than the limit.
TEST(ImageDecoder, TakesDamagedFilesOfEveryFormat) {
    const auto picture = quarters(24, 20, kOpaque[3]);
    const Bytes files[] = {
        *encodeJpeg(*picture, 0.5),
        jpeg(*picture, {"", 3, JCS_RGB, JCS_YCbCr, true, false}),
        jpeg(*picture, {"", 4, JCS_CMYK, JCS_YCCK, true, true}),
        webp(*picture, true),
        webp(*picture, false),
        *encodeTiff(*picture),
        *encodePng(*picture),
        withExif(*encodeJpeg(*picture, 0.5), exif(6, true)),
    };
    const std::uint64_t limit = NSBitmapImageRep::pixelLimit();
    NSBitmapImageRep::setPixelLimit(10'000);
    for (const Bytes& file : files) {
        for (std::size_t i = 0; i < file.size(); ++i) {
            static_cast<void>(decodeImage(std::span(file).first(i)));
            Bytes changed = file;
            changed[i] ^= std::byte{0xFF};
            const auto decoded = decodeImage(changed);
            EXPECT_TRUE(!decoded || (*decoded)->pixels().size() <= 10'000);
        }
    }
    NSBitmapImageRep::setPixelLimit(limit);
}

TEST(ImageDecoder, RefusesASizeBeforeItAllocates) {
    auto encoded = *encodeJpeg(*quarters(16, 16, kOpaque[3]), 0.5);
    const std::byte frame[] = {std::byte{0xFF}, std::byte{0xC0}};
    const auto found = std::search(encoded.begin(), encoded.end(), std::begin(frame), std::end(frame));
    ASSERT_NE(found, encoded.end());
    std::fill(found + 5, found + 9, std::byte{0x7F});  // 32,639 pixels each way
    const auto decoded = decodeImage(encoded);
    ASSERT_FALSE(decoded.ok());
    EXPECT_EQ(decoded.error().kind, ErrorKind::TooLarge) << decoded.error().message();
}

}  // namespace
}  // namespace kx
