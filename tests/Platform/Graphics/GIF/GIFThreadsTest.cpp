#include <atomic>
#include <thread>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Graphics/GIF/GIFCanvas.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFIndexPlane.h>
#include <KXFoundation/Platform/Graphics/GIF/GIFReader.h>

#include "GIFCases.h"

namespace kx {
namespace {

// Two threads unpack every second frame each, and paint it when its turn has come.
TEST(GIFThreads, UnpackDifferentFramesAtOnce) {
    std::size_t cases = 0;
    testing::forEachGIFCase([&](const testing::GIFCase& gif) {
        if (cases++ % 11 != 0) return;
        const auto reader = GIFReader::open(gif.file.bytes());
        const GIFContents contents = reader->contents();
        std::vector<std::uint32_t> pixels(std::size_t{gif.width} * gif.height);
        std::vector<std::vector<std::uint32_t>> shown(contents.frames.size());
        GIFCanvas canvas(gif.width, gif.height);
        std::atomic<std::size_t> turn = 0;
        const auto everySecond = [&](std::size_t first) {
            GIFIndexPlane plane;
            for (std::size_t i = first; i < shown.size(); i += 2) {
                EXPECT_TRUE(plane.unpack(contents.frames[i]));
                for (std::size_t now = turn; now != i; now = turn) turn.wait(now);
                canvas.paint(contents.frames[i], plane.indices(),
                             {reinterpret_cast<std::uint8_t*>(pixels.data()), std::size_t{gif.width} * 4});
                shown[i] = pixels;
                ++turn;
                turn.notify_all();
            }
        };
        std::thread other(everySecond, 1);
        everySecond(0);
        other.join();
        EXPECT_TRUE(shown == expectedCanvases(gif)) << gif.name;
    });
}

}  // namespace
}  // namespace kx
