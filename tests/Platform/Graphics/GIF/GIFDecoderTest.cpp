// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstring>

#include <KXFoundation/Platform/Graphics/GIF/GIFAheadDecoder.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFDecoder.h>

#include "GIFCases.h"

namespace kx {
namespace {

using testing::GIFCase;
using testing::GIFWriter;
using testing::GIFWriterFrame;
using Bytes = std::vector<std::uint8_t>;
using Canvas = std::vector<std::uint32_t>;

const Bytes kTwoColours = {10, 20, 30, 200, 210, 220};
constexpr std::uint32_t kFirst = 0xFF0A141E, kSecond = 0xFFC8D2DC;

GIFWriterFrame solid(std::uint16_t width, std::uint16_t height, std::uint8_t index) {
    GIFWriterFrame frame;
    frame.width = width;
    frame.height = height;
    frame.indices = Bytes(std::size_t{width} * height, index);
    return frame;
}

// Pixels at an odd address with room between the rows, which must stay as it is.
class Picture {
  public:
    Picture(std::uint32_t width, std::uint32_t height)
        : width_(width), height_(height), stride_(width * 4 + 3), bytes_(1 + stride_ * height, kUntouched) {}

    [[nodiscard]] GIFPixels pixels() { return {bytes_.data() + 1, stride_}; }
    [[nodiscard]] Canvas canvas() const {
        Canvas canvas(std::size_t{width_} * height_);
        for (std::size_t y = 0; y < height_; ++y)
            std::memcpy(&canvas[y * width_], bytes_.data() + 1 + y * stride_, std::size_t{width_} * 4);
        return canvas;
    }
    [[nodiscard]] bool keptTheGaps() const {
        for (std::size_t y = 0; y <= height_; ++y)
            for (std::size_t i = 0; i < (y == 0 ? 1 : 3); ++i)
                if (bytes_[y * stride_ - (y == 0 ? 0 : 2) + i] != kUntouched) return false;
        return true;
    }

  private:
    static constexpr std::uint8_t kUntouched = 0xA5;
    std::size_t width_, height_, stride_;
    Bytes bytes_;
};

std::vector<Canvas> decodeInto(const Bytes& file, GIFLimits limits = {}) {
    std::vector<Canvas> shown;
    auto decoder = GIFDecoder::open(file, limits);
    if (!decoder) return shown;
    Picture picture(decoder->width(), decoder->height());
    for (auto frame = decoder->next(picture.pixels()); frame && *frame;
         frame = decoder->next(picture.pixels()))
        shown.push_back(picture.canvas());
    EXPECT_TRUE(picture.keptTheGaps());
    return shown;
}

std::vector<Canvas> decodeApart(const Bytes& file) {
    std::vector<Canvas> shown;
    auto decoder = GIFDecoder::open(file);
    std::vector<Picture> pictures(2, Picture(decoder->width(), decoder->height()));
    for (std::size_t i = 0;; ++i) {
        Picture &picture = pictures[i % 2], &previous = pictures[1 - i % 2];
        const Canvas before = previous.canvas();
        const auto frame = decoder->next(picture.pixels(), previous.pixels());
        if (!frame || !*frame) return shown;
        EXPECT_EQ(previous.canvas(), before) << "a frame given away was written to";
        shown.push_back(picture.canvas());
    }
}

std::vector<Canvas> decodeAtRandom(const Bytes& file) {
    const auto reader = GIFReader::open(file);
    const auto contents = std::make_shared<const GIFContents>(reader->contents());
    GIFAheadDecoder decoder(contents, reader->width(), reader->height());
    std::vector<Canvas> shown(contents->frames.size());
    for (std::size_t i = shown.size(); i-- > 0;) {
        Picture picture(reader->width(), reader->height());
        decoder.startAt(decoder.startFor(i));
        while (decoder.position() <= i) decoder.next(picture.pixels());
        shown[i] = picture.canvas();
    }
    return shown;
}

std::vector<Canvas> decodePlainly(const Bytes& file) {
    const auto reader = GIFReader::open(file);
    std::vector<Canvas> shown;
    GIFIndexPlane plane;
    GIFCanvas canvas(reader->width(), reader->height(), VectorSpeed::Plain);
    Picture picture(reader->width(), reader->height());
    for (const GIFFrame& frame : reader->contents().frames) {
        EXPECT_TRUE(plane.unpack(frame));
        canvas.paint(frame, plane.indices(), picture.pixels());
        shown.push_back(picture.canvas());
    }
    return shown;
}

TEST(GIFDecoder, EveryWayOfDecodingGivesTheFramesThatWereWritten) {
    testing::forEachGIFCase([](const GIFCase& gif) {
        const std::vector<Canvas> expected = expectedCanvases(gif);
        EXPECT_EQ(decodeInto(gif.file.bytes()), expected) << gif.name;
        EXPECT_EQ(decodeApart(gif.file.bytes()), expected) << gif.name;
        EXPECT_EQ(decodeAtRandom(gif.file.bytes()), expected) << gif.name;
        EXPECT_EQ(decodePlainly(gif.file.bytes()), expected) << gif.name;
    });
}

TEST(GIFDecoder, DamageAnywhereLeavesTheFramesBeforeIt) {
    constexpr GIFLimits kLimits{.pixels = 1 << 20, .frames = 100};
    std::size_t cases = 0;
    testing::forEachGIFCase([&](const GIFCase& gif) {
        if (gif.width > 40 || cases++ % 47 != 0) return;
        const std::vector<Canvas> whole = decodeInto(gif.file.bytes());
        testing::forEachDamage(gif.file, [&](std::size_t breakAt, const std::vector<Bytes>& damagedFiles) {
            // The last of the frames before the break, which the last file ends at, may be the one that it
            // cuts.
            const std::size_t safe =
                std::max<std::size_t>(1, decodeInto(damagedFiles.back(), kLimits).size()) - 1;
            for (const Bytes& damaged : damagedFiles) {
                const std::vector<Canvas> shown = decodeInto(damaged, kLimits);
                const auto reader = GIFReader::open(damaged, kLimits);
                ASSERT_EQ(shown.size(), reader ? reader->contents().frames.size() : 0)
                    << gif.name << ", " << breakAt;
                ASSERT_GE(shown.size(), safe) << gif.name << ", " << breakAt;
                for (std::size_t i = 0; i < safe; ++i)
                    ASSERT_TRUE(shown[i] == whole[i]) << gif.name << ", " << breakAt << ", frame " << i;
            }
        });
    });
}

TEST(GIFDecoder, OpensOnlyWhatIsAGIFWithinItsLimits) {
    const Bytes good = GIFWriter(3, 2, kTwoColours, 2).trailer().bytes();
    const auto cut = [&](std::size_t size) {
        return Bytes(good.begin(), good.begin() + static_cast<std::ptrdiff_t>(size));
    };
    Bytes other = good;
    other[4] = '8';
    const std::tuple<const char*, Bytes, std::optional<ErrorKind>> rows[] = {
        {"good", good, {}},
        {"no trailer", cut(19), {}},
        {"palette cut", cut(18), ErrorKind::Ended},
        {"header cut", cut(12), ErrorKind::Ended},
        {"signature cut", cut(3), ErrorKind::Ended},
        {"empty", {}, ErrorKind::Ended},
        {"another version", other, ErrorKind::Corrupt},
        {"another format", {0x89, 'P', 'N', 'G'}, ErrorKind::Corrupt},
        {"no area", GIFWriter(0, 2, kTwoColours, 2).bytes(), ErrorKind::Corrupt},
        {"just too large", GIFWriter(4, 2, kTwoColours, 2).bytes(), ErrorKind::TooLarge},
    };
    for (const auto& [what, bytes, error] : rows) {
        const auto decoder = GIFDecoder::open(bytes, {.pixels = 7});
        EXPECT_EQ(decoder ? std::optional<ErrorKind>() : decoder.error().kind, error) << what;
    }
}

TEST(GIFDecoder, LoopCountComesFromEitherApplicationExtension) {
    const auto loops = [](const char* application, std::uint16_t count) {
        GIFWriter file(1, 1, kTwoColours, 2);
        if (application) file.comment("a comment").loopCount(count, application);
        return GIFReader::open(file.frame(solid(1, 1, 0)).trailer().bytes())->contents().loopCount;
    };
    EXPECT_EQ(loops(nullptr, 0), 0);
    EXPECT_EQ(loops("NETSCAPE2.0", 3), 3);
    EXPECT_EQ(loops("ANIMEXTS1.0", 65535), 65535);
    EXPECT_EQ(loops("NETSCAPE2.0", 0), 0);
    EXPECT_EQ(loops("SOMETHING10", 3), 0);
    EXPECT_EQ(loops("NETSCAPE2", 3), 0);
}

TEST(GIFDecoder, AFrameThatCannotBeUnpackedRepeatsTheCanvas) {
    const auto packed = [](std::initializer_list<unsigned> codes) {
        testing::GIFCodeWriter out;
        for (const unsigned code : codes) out.code(code, 3);
        return out.take();
    };
    // Two bits an index: 4 clears, 5 ends. The canvas before is all kFirst.
    // What is packed, the frame's side, its damage, and how many pixels get the second colour.
    const std::tuple<const char*, Bytes, std::uint16_t, ErrorKind, std::size_t> rows[] = {
        {"no data", {}, 2, ErrorKind::Ended, 0},
        {"ends at once", packed({4, 5}), 2, ErrorKind::Ended, 0},
        {"ends early", packed({4, 1, 5}), 2, ErrorKind::Ended, 1},
        {"starts with a string", packed({4, 7}), 2, ErrorKind::Corrupt, 0},
        {"a string from the future", packed({4, 1, 7}), 2, ErrorKind::Corrupt, 1},
        {"no clear code at first", packed({1, 1, 5}), 2, ErrorKind::Ended, 2},
        {"beyond the limit", packed({4, 1, 5}), 60000, ErrorKind::TooLarge, 0},
    };
    for (const auto& [what, data, side, damage, painted] : rows) {
        GIFWriterFrame broken;
        broken.width = broken.height = side;
        const Bytes file =
            GIFWriter(2, 2, kTwoColours, 2).frame(solid(2, 2, 0)).frameOf(broken, data).frame({}).bytes();
        auto decoder = GIFDecoder::open(file);
        Picture picture(2, 2);
        ASSERT_TRUE(decoder->next(picture.pixels()));
        EXPECT_FALSE(decoder->damage()) << what;
        ASSERT_TRUE(decoder->next(picture.pixels())) << what;
        ASSERT_TRUE(decoder->damage()) << what;
        EXPECT_EQ(decoder->damage()->kind, damage) << what;
        Canvas expected(4, kFirst);
        std::fill_n(expected.begin(), painted, kSecond);
        EXPECT_EQ(picture.canvas(), expected) << what;
        EXPECT_EQ(decodeAtRandom(file)[2], expected) << what << ", the frame after it";
    }
}

TEST(GIFDecoder, AnIndexBeyondThePaletteIsBlack) {
    for (const Bytes& palette : {kTwoColours, Bytes()})
        EXPECT_EQ(decodeInto(GIFWriter(1, 1, palette, 2).frame(solid(1, 1, 3)).bytes()).at(0),
                  Canvas{0xFF000000});
}

TEST(GIFDecoder, KeyFramesNeedNoOthers) {
    GIFWriterFrame clearing = solid(2, 2, 0), part = solid(1, 2, 0), seeThrough = solid(2, 2, 0);
    clearing.disposal = 2;
    seeThrough.transparentIndex = 1;
    const GIFContents contents = GIFReader::open(GIFWriter(2, 2, kTwoColours, 2)
                                                     .frame(part)
                                                     .frame(part)
                                                     .frame(solid(2, 2, 0))
                                                     .frame(seeThrough)
                                                     .frame(clearing)
                                                     .frame(part)
                                                     .bytes())
                                     ->contents();
    const std::size_t keys[] = {0, 0, 2, 2, 4, 5};
    for (std::size_t i = 0; i < std::size(keys); ++i)
        EXPECT_EQ(contents.keyFrame(i, 2, 2), keys[i]) << "frame " << i;
}

TEST(GIFDecoder, RewindsToTheSameFrames) {
    GIFWriterFrame frame = solid(1, 1, 1);
    frame.disposal = 3;
    const Bytes file = GIFWriter(2, 1, kTwoColours, 2).frame(frame).frame(solid(1, 1, 0)).bytes();
    auto decoder = GIFDecoder::open(file);
    Picture picture(2, 1);
    for (int round = 0; round < 2; ++round, decoder->rewind()) {
        ASSERT_TRUE(decoder->next(picture.pixels()));
        EXPECT_EQ(picture.canvas(), (Canvas{kSecond, 0})) << "round " << round;
    }
}

TEST(GIFDecoder, TakesNoMoreFramesThanTheLimit) {
    GIFWriter file(1, 1, kTwoColours, 2);
    for (int i = 0; i < 4; ++i) file.frame(solid(1, 1, 0));
    const GIFContents contents = GIFReader::open(file.bytes(), {.frames = 3})->contents();
    EXPECT_EQ(contents.frames.size(), 3u);
    ASSERT_TRUE(contents.problem);
    EXPECT_EQ(contents.problem->kind, ErrorKind::TooLarge);
}

}  // namespace
}  // namespace kx
