// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Graphics/GIF/GIFFrameStream.h>
#include <KXFoundation/Platform/Graphics/ImageSource.h>
#include <KXFoundation/Platform/Graphics/NSStreamedImageRep.h>

#include "Media/GIFFixture.h"

namespace kx {
namespace {

using testing::colouredFrames;
using testing::dataOf;
using testing::frameOf;
using testing::GIFWriter;
using testing::GIFWriterFrame;

GIFWriter fileOf(std::uint16_t side, std::size_t frames) {
    return colouredFrames(std::vector<std::uint16_t>(frames), 0, side);
}

TEST(ImageSource, TellsDelaysAndLoops) {
    GIFWriter file(3, 2, {0, 0, 0, 9, 9, 9}, 2);
    file.loopCount(7);
    using Seconds = std::optional<double>;
    const std::tuple<std::optional<std::uint16_t>, Seconds, Seconds> rows[] = {
        {5, 0.05, 0.05}, {2, 0.02, 0.02}, {1, 0.01, 0.1}, {0, 0.0, 0.1}, {{}, {}, {}}};
    for (const auto& row : rows) {
        GIFWriterFrame frame;
        frame.width = frame.height = 1;
        frame.indices = {1};
        frame.delayHundredths = std::get<0>(row);
        file.frame(frame);
    }
    const auto source = ImageSource::initWithData(dataOf(file.trailer().bytes()));
    ASSERT_EQ(source->count(), std::size(rows));
    EXPECT_EQ(source->properties()[ImageSource::kGIFDictionary][ImageSource::kLoopCount].asInteger(), 7);
    for (std::size_t i = 0; i < std::size(rows); ++i) {
        const Value properties = source->propertiesAtIndex(i);
        const Value gif = properties[ImageSource::kGIFDictionary];
        EXPECT_EQ(gif[ImageSource::kUnclampedDelayTime].asReal(), std::get<1>(rows[i])) << "frame " << i;
        EXPECT_EQ(gif[ImageSource::kDelayTime].asReal(), std::get<2>(rows[i])) << "frame " << i;
        EXPECT_EQ(properties[ImageSource::kPixelWidth].asInteger(), 3) << "frame " << i;
    }
    EXPECT_TRUE(source->propertiesAtIndex(std::size(rows)).isNull());
    EXPECT_EQ(source->imageRepAtIndex(std::size(rows)), nullptr);
}

TEST(ImageSource, CountsWhatCanBeShown) {
    const auto png = std::vector<std::uint8_t>{0x89, 'P', 'N', 'G', '\r', '\n', 0x1A, '\n'};
    const auto good = fileOf(4, 3).bytes();  // no trailer
    const std::tuple<const char*, Value, std::optional<std::size_t>> rows[] = {
        {"a GIF", dataOf(good), 3},
        {"its header", dataOf({good.begin(), good.begin() + 9}), 0},
        {"a break in the third frame", dataOf({good.begin(), good.end() - 20}), 2},
        {"another format", dataOf(png), 1},
        {"no picture", dataOf({1, 2, 3}), 0},
        {"no data", Value("GIF89a"), {}},
    };
    for (const auto& [what, data, count] : rows) {
        const auto source = ImageSource::initWithData(data);
        ASSERT_EQ(source ? std::optional(source->count()) : std::nullopt, count) << what;
        EXPECT_EQ(source && source->imageRepAtIndex(0), count > 1U) << what;
    }
}

TEST(ImageSource, KeepsSmallFilesWholeAndStreamsOthersInAnyOrder) {
    const std::uint64_t before = FrameMemory::inUse();
    for (const std::uint16_t side : {std::uint16_t{8}, std::uint16_t{800}}) {
        const auto source = ImageSource::initWithData(dataOf(fileOf(side, 12).trailer().bytes()));
        const bool isSmall = 12ULL * side * side * 4 < ImageSource::kSmall;
        for (const std::size_t index : {std::size_t{0}, std::size_t{5}, std::size_t{3}, std::size_t{11}}) {
            const auto rep = source->imageRepAtIndex(index);
            EXPECT_EQ(objectCast<NSBitmapImageRep>(rep) != nullptr, isSmall);
            EXPECT_EQ(objectCast<NSStreamedImageRep>(rep) != nullptr, !isSmall);
            auto image = NSImage::initWithSize({double(side), double(side)});
            image->addRepresentation(rep);
            EXPECT_EQ(frameOf(image), static_cast<int>(index));
        }
        EXPECT_GT(FrameMemory::inUse(), before);
    }
    drainQueues();
    EXPECT_EQ(FrameMemory::inUse(), before);
}

TEST(ImageSource, CountsNoMemoryForAFrameThatIsTooLargeToUnpack) {
    const std::uint64_t before = FrameMemory::inUse();
    GIFWriterFrame huge;
    huge.width = huge.height = 60'000;
    const auto source = ImageSource::initWithData(dataOf(fileOf(1200, 3).frameOf(huge, {}).bytes()));
    EXPECT_NE(objectCast<NSStreamedImageRep>(source->imageRepAtIndex(3)), nullptr);
    EXPECT_LT(FrameMemory::inUse() - before, FrameMemory::kBudget);
}

TEST(ImageSource, GivesPlayersStreamsOfTheirOwnAsFarAsMemoryGoes) {
    const auto source = ImageSource::initWithData(dataOf(fileOf(1200, 4).trailer().bytes()));
    const auto rep = objectCast<NSStreamedImageRep>(source->imageRepAtIndex(0));
    std::vector<std::shared_ptr<GIFFrameStream>> streams;
    do streams.push_back(rep->stream());
    while (streams.size() < 9 && (streams.size() == 1 || streams.back().get() != streams.front().get()));
    EXPECT_GT(streams.size(), 2U);
    EXPECT_EQ(streams.back().get(), streams.front().get());
    EXPECT_LE(FrameMemory::inUse(), FrameMemory::kBudget);
    const auto shown =
        NSImage::initWithBitmap(streams.front()->bitmapAtIndex(1));  // given away: stays as it is
    EXPECT_EQ(frameOf(NSImage::initWithBitmap(streams.front()->bitmapAtIndex(2))), 2);
    EXPECT_EQ(frameOf(NSImage::initWithBitmap(streams[1]->bitmapAtIndex(3))), 3);
    EXPECT_EQ(frameOf(shown), 1);
    EXPECT_EQ(streams.front()->bitmapAtIndex(4), nullptr);
}

}  // namespace
}  // namespace kx
