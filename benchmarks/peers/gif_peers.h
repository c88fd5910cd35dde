// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <functional>
#include <span>
#include <vector>

/// Other GIF decoders, all with the same task: composite every frame and hand it out, 4 bytes a pixel. Each
/// wrapper is the only file that knows its library.
namespace kx::peers {

/// A finished frame: blue, green, red, alpha (alpha 0 means nothing was painted there). Valid during the
/// call.
struct GIFPicture {
    std::uint32_t width = 0, height = 0;
    std::span<const std::uint8_t> bytes;
};

/// Called for each frame in order; false ends the decoding.
using GIFSink = std::function<bool(const GIFPicture&)>;

/// Answers the number of frames handed out, or -1 if the library refuses the file. The last frame's pixels
/// are written to `scratch`, which grows as needed, so that it is warm from one call to the next.
int gifWithGiflib(std::span<const std::uint8_t> file, std::vector<std::uint8_t>& scratch,
                  const GIFSink& sink);
int gifWithFFmpeg(std::span<const std::uint8_t> file, std::vector<std::uint8_t>& scratch,
                  const GIFSink& sink);

}  // namespace kx::peers
