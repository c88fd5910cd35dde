// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <vector>

/// Other libraries' picture operations. Each wrapper is the only file that knows its library.
namespace kx::peers {

/// Four bytes a pixel, rows without gaps. Channels may be in any order: all are treated alike, and the photo
/// is opaque.
struct Pixels {
    int wide = 0, high = 0;
    std::uint8_t* bytes = nullptr;
};

/// Both scale the whole of `from` into the memory of `to`.
void resizeWithGdkPixbuf(const Pixels& from, const Pixels& to);  // bilinear
void resizeWithSwscale(const Pixels& from, const Pixels& to);    // Lanczos

/// The JPEG file reduced to that width: red, green, blue; empty if it cannot be read.
std::vector<std::uint8_t> thumbnailWithGdkPixbuf(const char* path, int wide);

}  // namespace kx::peers
