// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstring>

#include "GIFCases.h"
#include "gif_peers.h"

// Independent decoders, pixel by pixel. What no frame painted has no colour, whatever a decoder writes there.
namespace kx {
namespace {

using Bytes = std::vector<std::uint8_t>;
using Canvas = std::vector<std::uint32_t>;
using Peer = int (*)(std::span<const std::uint8_t>, Bytes&, const peers::GIFSink&);

std::vector<Canvas> decodeWith(Peer peer, const Bytes& file) {
    std::vector<Canvas> shown;
    Bytes scratch;
    peer(file, scratch, [&](const peers::GIFPicture& picture) {
        Canvas& canvas = shown.emplace_back(picture.bytes.size() / 4);
        std::memcpy(canvas.data(), picture.bytes.data(), picture.bytes.size());
        for (std::uint32_t& pixel : canvas)
            if (pixel >> 24 == 0) pixel = 0;
        return true;
    });
    return shown;
}

// FFmpeg moves frames without area, or wholly outside, into the canvas, and counts the rows of interlaced
// frames only as far as the canvas goes.
bool ffmpegKnowsTheShapes(const testing::GIFCase& gif) {
    return std::all_of(gif.frames.begin(), gif.frames.end(), [&](const testing::GIFWriterFrame& frame) {
        return frame.width > 0 && frame.height > 0 && frame.left < gif.width && frame.top < gif.height &&
               (!frame.interlaced || frame.top + frame.height <= gif.height);
    });
}

// Without a transparent index in the first frame FFmpeg shows a background colour where nothing was painted.
bool ffmpegShowsNoBackground(const testing::GIFCase& gif, const std::vector<Canvas>& frames) {
    const auto opaque = [](const Canvas& canvas) {
        return std::all_of(canvas.begin(), canvas.end(),
                           [](std::uint32_t pixel) { return pixel >> 24 == 0xFF; });
    };
    return gif.frames[0].transparentIndex || std::all_of(frames.begin(), frames.end(), opaque);
}

TEST(GIFPeers, GiveWhatWasWrittenToo) {
    std::size_t compared = 0;
    testing::forEachGIFCase([&](const testing::GIFCase& gif) {
        const std::vector<Canvas> frames = expectedCanvases(gif);
        EXPECT_TRUE(decodeWith(peers::gifWithGiflib, gif.file.bytes()) == frames) << "giflib, " << gif.name;
        if (!ffmpegKnowsTheShapes(gif) || !ffmpegShowsNoBackground(gif, frames)) return;
        ++compared;
        EXPECT_TRUE(decodeWith(peers::gifWithFFmpeg, gif.file.bytes()) == frames) << "FFmpeg, " << gif.name;
    });
    EXPECT_GT(compared, 200u);
}

}  // namespace
}  // namespace kx
