// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Graphics/GIF/GIFDecoder.h>
#include <KXFoundation/Testing/CountedMemory.h>

#include "GIFCases.h"

namespace kx {
namespace {

constexpr std::size_t kTables = 100 << 10;  // dictionary, palettes, slack: the same for every file
constexpr std::uint16_t kSide = 500;
constexpr std::size_t kPlane = std::size_t{kSide} * kSide;

struct Use {
    std::size_t frames = 0, peak = 0;
};

Use decodeAll(const std::vector<std::uint8_t>& file, GIFLimits limits) {
    std::vector<std::uint8_t> canvas(kPlane * 4);
    const std::size_t before = testing::heldMemory();
    testing::takePeakMemory();
    Use use;
    auto decoder = GIFDecoder::open(file, limits);
    for (auto frame = decoder->next({canvas.data(), kSide * 4}); frame && *frame;
         frame = decoder->next({canvas.data(), kSide * 4}))
        ++use.frames;
    use.peak = testing::takePeakMemory() - before;
    return use;
}

std::vector<std::uint8_t> fileOf(std::uint8_t disposal, std::uint16_t frameSide, int frames) {
    testing::GIFWriter file(kSide, kSide, {0, 0, 0, 9, 9, 9}, 2);
    testing::GIFWriterFrame frame;
    frame.width = frame.height = frameSide;
    frame.disposal = disposal;
    frame.transparentIndex = 1;
    if (frameSide <= kSide) frame.indices.resize(std::size_t{frameSide} * frameSide);
    for (int i = 0; i < frames; ++i) file.frame(frame);
    return file.trailer().bytes();
}

TEST(GIFMemory, IsOneIndexPlaneAndWhatFramesAskToHaveBackBesidesTheCallersFrame) {
    const std::tuple<const char*, std::uint8_t, std::uint16_t, std::uint64_t, std::size_t> rows[] = {
        {"kept", 1, kSide, GIFLimits().pixels, kPlane},
        {"cleared", 2, kSide, GIFLimits().pixels, kPlane},
        {"asked back", 3, kSide, GIFLimits().pixels, kPlane * 5},
        {"beyond the limit", 1, 60000, kPlane, 0},
    };
    for (const auto& [what, disposal, side, limit, most] : rows) {
        const Use use = decodeAll(fileOf(disposal, side, 20), {.pixels = limit});
        EXPECT_EQ(use.frames, 20U) << what;
        EXPECT_LE(use.peak, most + kTables) << what;
    }
}

}  // namespace
}  // namespace kx
