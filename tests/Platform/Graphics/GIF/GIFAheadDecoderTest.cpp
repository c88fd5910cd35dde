// SPDX-License-Identifier: MIT

#include <random>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Graphics/GIF/GIFAheadDecoder.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFDecoder.h>
#include <KXFoundation/Testing/SimulatedWorld.h>

#include "support/GIFWriter.h"

namespace kx {
namespace {

using testing::GIFWriter;
using testing::GIFWriterFrame;
using Bytes = std::vector<std::uint8_t>;

constexpr std::uint16_t kWidth = 300, kHeight = 230;  // frames that are worth a second core
static_assert(kWidth * kHeight > GIFAheadDecoder::kWorthwhile);
constexpr std::size_t kFrames = 12;
constexpr std::size_t kStride = std::size_t{kWidth} * 4;

/// Every disposal, whole and partial frames, see-through ones, and one whose data stop half-way.
Bytes someFile() {
    GIFWriter file(kWidth, kHeight, {9, 8, 7, 60, 70, 80, 150, 160, 170, 240, 250, 255}, 2);
    for (std::size_t i = 0; i < kFrames; ++i) {
        GIFWriterFrame frame;
        frame.left = frame.top = static_cast<std::uint16_t>(i % 3 == 1 ? 40 : 0);
        frame.width = static_cast<std::uint16_t>(kWidth - 2 * frame.left);
        frame.height = static_cast<std::uint16_t>(kHeight - 2 * frame.top);
        frame.disposal = static_cast<std::uint8_t>(i % 4);
        if (i % 5 == 2) frame.transparentIndex = std::uint8_t{0};
        for (std::size_t at = 0; at < std::size_t{frame.width} * frame.height; ++at)
            frame.indices.push_back(static_cast<std::uint8_t>((at / 7 + at % (i + 3) + i) & 3));
        Bytes packed = packGIF(frame.indices, 2, GIFWriter::Packing::Strings);
        if (i == 7) packed.resize(packed.size() / 2);
        file.frameOf(frame, packed);
    }
    return file.trailer().bytes();
}

struct Fixture {
    const Bytes file = someFile();
    std::shared_ptr<const GIFContents> contents =
        std::make_shared<const GIFContents>(GIFReader::open(file)->contents());
    std::vector<Bytes> expected = [this] {
        std::vector<Bytes> frames;
        auto decoder = GIFDecoder::open(file);
        Bytes pixels(kStride * kHeight);
        while (*decoder->next({pixels.data(), kStride})) frames.push_back(pixels);
        return frames;
    }();
};

const Fixture& fixture() {
    static const Fixture made;
    return made;
}

/// Steps and jumps; every frame must be the one that decoding in order gives, and be damaged if that is.
void walk(std::uint64_t seed, int steps) {
    const Fixture& f = fixture();
    std::mt19937 random(static_cast<unsigned>(seed));
    GIFAheadDecoder decoder(f.contents, kWidth, kHeight);
    Bytes pixels(kStride * kHeight), apart(kStride * kHeight);
    for (int step = 0; step < steps; ++step) {
        if (decoder.position() == kFrames || random() % 6 == 0)
            decoder.startAt(decoder.startFor(random() % kFrames));
        const std::size_t index = decoder.position();
        if (random() % 2 == 0) {
            ASSERT_TRUE(decoder.next({pixels.data(), kStride}));
        } else {
            ASSERT_TRUE(decoder.next({apart.data(), kStride}, {pixels.data(), kStride}));
            std::swap(pixels, apart);
        }
        ASSERT_TRUE(pixels == f.expected[index]) << "frame " << index << ", seed " << seed;
        ASSERT_EQ(decoder.damage().has_value(), index == 7) << "seed " << seed;
    }
}

TEST(GIFAheadDecoder, GivesTheFramesInWhateverOrderTheQueueRuns) {
    ASSERT_EQ(fixture().expected.size(), kFrames);
    for (std::uint64_t seed = 0; seed < 60; ++seed) {
        testing::SimulatedWorld world(seed);
        walk(seed, 20);
        world.run();
    }
}

TEST(GIFAheadDecoder, WorksWithRealThreadsAndMayBeDroppedAnywhere) {
    for (std::uint64_t seed = 0; seed < 30; ++seed) walk(seed, static_cast<int>(seed) + 1);
    drainQueues();
}

}  // namespace
}  // namespace kx
