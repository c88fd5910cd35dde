// SPDX-License-Identifier: MIT
#pragma once

#include <functional>

#include <gtest/gtest.h>

#include "support/GIFWriter.h"

/// Every kind of GIF: disposals x interlace x transparency x sizes, with frames inside, across and outside
/// the canvas.
namespace kx::testing {

struct GIFCase {
    std::string name;
    std::uint16_t width = 0, height = 0;
    std::vector<std::uint8_t> palette;
    std::vector<GIFWriterFrame> frames;
    GIFWriter file;
};

void forEachGIFCase(const std::function<void(const GIFCase&)>& test);

/// What the frames of a case look like, from what was written and not from what is read: blue, green, red,
/// alpha.
[[nodiscard]] std::vector<std::vector<std::uint32_t>> expectedCanvases(const GIFCase& gif);

/// Damages the file in every way at every byte where a part of the structure begins: each time gives the
/// place of the break and the broken files.
void forEachDamage(
    const GIFWriter& file,
    const std::function<void(std::size_t, const std::vector<std::vector<std::uint8_t>>&)>& test);

}  // namespace kx::testing
