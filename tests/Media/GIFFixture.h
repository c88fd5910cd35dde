// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

#include "support/GIFWriter.h"

namespace kx::testing {

/// A square GIF with one colour to a frame: frame i has red 10 * (i + 1). Delays in hundredths.
inline GIFWriter colouredFrames(const std::vector<std::uint16_t>& delays, std::uint16_t loops = 0,
                                std::uint16_t side = 2) {
    std::vector<std::uint8_t> palette;
    for (int i = 0; i < 16; ++i)
        palette.insert(palette.end(), {static_cast<std::uint8_t>(10 * (i + 1)), 0, 0});
    GIFWriter file(side, side, palette, 4);
    if (loops > 0) file.loopCount(loops);
    for (std::size_t i = 0; i < delays.size(); ++i) {
        GIFWriterFrame frame;
        frame.width = frame.height = side;
        frame.delayHundredths = delays[i];
        frame.indices.assign(std::size_t{side} * side, static_cast<std::uint8_t>(i % 16));
        file.frame(frame);
    }
    return file;
}

inline std::vector<std::uint8_t> colouredGIF(const std::vector<std::uint16_t>& delays,
                                             std::uint16_t loops = 0, std::uint16_t side = 2) {
    return colouredFrames(delays, loops, side).trailer().bytes();
}

inline Value dataOf(const std::vector<std::uint8_t>& bytes) {
    return Value::data(std::as_bytes(std::span(bytes)));
}

/// The number of the frame that the image is, -1 for none.
inline int frameOf(const std::shared_ptr<NSImage>& image) {
    const auto bitmap = image ? image->bitmapAtScale(1) : nullptr;
    return bitmap ? static_cast<int>((bitmap->pixelAt(0, 0) >> 16 & 255) / 10) - 1 : -1;
}

inline std::string write(const TemporaryDirectory& directory, const std::string& name,
                         const std::vector<std::uint8_t>& bytes) {
    return directory.write(name, {reinterpret_cast<const char*>(bytes.data()), bytes.size()});
}

}  // namespace kx::testing
