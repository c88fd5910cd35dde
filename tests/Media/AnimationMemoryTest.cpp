// SPDX-License-Identifier: MIT

#include <chrono>

#include <KXFoundation/Media/KXAnimatedGIFImageView.h>
#include <KXFoundation/Platform/Graphics/GIF/FrameMemory.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Testing/CountedMemory.h>
#include <KXFoundation/Testing/ManualClock.h>

#include "../Platform/Views/ViewFixture.h"
#include "GIFFixture.h"

namespace kx {
namespace {

using namespace std::chrono_literals;

/// 1,000 frames of a full-HD screen that ask, one in four, to have back what they cover.
std::vector<std::uint8_t> fullHD() {
    testing::GIFWriter file(1920, 1080, {0, 0, 0, 80, 0, 0, 160, 0, 0, 240, 0, 0}, 2);
    testing::GIFWriterFrame frame;
    frame.width = 1920;
    frame.height = 1080;
    frame.delayHundredths = 2;
    std::vector<std::uint8_t> packed[4];
    for (std::uint8_t i = 0; i < 4; ++i)
        packed[i] = testing::packGIF(std::vector<std::uint8_t>(1920 * 1080, i), 2,
                                     testing::GIFWriter::Packing::Strings);
    for (std::size_t i = 0; i < 1000; ++i) {
        frame.disposal = i % 4 == 3 ? 3 : 1;
        file.frameOf(frame, packed[i % 4]);
    }
    return file.trailer().bytes();
}

TEST(AnimationMemory, AThousandFullHDFramesPlayInLessThan64MiB) {
    constexpr std::size_t kMiB = std::size_t{1} << 20;
    const auto clock = std::make_shared<testing::ManualClock>();
    const ScopedPort<Clock> scope(clock);
    const testing::TemporaryDirectory directory;
    const std::vector<std::uint8_t> file = fullHD();
    const std::string path = testing::write(directory, "large.gif", file);
    const testing::OffscreenWindow window({64, 36});
    const std::size_t before = testing::heldMemory() + file.size();  // the view has its own copy
    testing::takePeakMemory();

    auto view = make<KXAnimatedGIFImageView>(NSRect(0, 0, 64, 36));
    window.content().addSubview(view);
    view->setGIFPath(path);
    drainQueues();
    ASSERT_EQ(view->frameCount(), 1000U);
    for (const std::size_t start : {std::size_t{0}, std::size_t{990}, std::size_t{501}}) {
        view->seekToFrame(start);
        drainQueues();
        for (std::size_t i = 0; i < 30; ++i) {
            const auto frame = (start + i) % 1000;
            ASSERT_EQ(view->currentFrame(), frame);
            ASSERT_EQ(view->image()->bitmapAtScale(1)->pixelAt(960, 540) >> 16 & 255, frame % 4 * 80);
            window.window->displayIfNeeded();
            clock->advance(20ms);
        }
    }
    EXPECT_LT(testing::takePeakMemory() - before, 64 * kMiB);
    EXPECT_GT(FrameMemory::inUse(), 16 * kMiB);
    EXPECT_LE(FrameMemory::inUse(), FrameMemory::kBudget);
    view->setImage(nullptr);
    drainQueues();
    EXPECT_LT(testing::heldMemory() - before, 4 * kMiB) << "the file is kept, its frames are not";
    EXPECT_EQ(FrameMemory::inUse(), 0U);
}

}  // namespace
}  // namespace kx
