// SPDX-License-Identifier: MIT

#include "GIFCases.h"

#include <random>

namespace kx::testing {

namespace {

using Random = std::independent_bits_engine<std::mt19937, 32, unsigned>;

struct Shape {
    std::uint16_t width, height;
    unsigned depth;
};
// A lone pixel, fewer rows than interlace passes, and rows longer than any vector step; the last has enough
// pixels to fill a dictionary.
constexpr Shape kShapes[] = {{1, 1, 1},  {2, 3, 2},   {7, 5, 3},   {16, 16, 4},
                             {33, 9, 5}, {65, 17, 7}, {150, 90, 8}};

std::vector<std::uint8_t> somePalette(Random& random, unsigned depth) {
    std::vector<std::uint8_t> colours(std::size_t{3} << depth);
    for (auto& channel : colours) channel = static_cast<std::uint8_t>(random());
    return colours;
}

// Noise, long runs, or something between.
std::vector<std::uint8_t> someIndices(Random& random, std::size_t count, unsigned depth) {
    const unsigned runLength = 1U << 3 * (random() % 3);
    std::vector<std::uint8_t> indices;
    while (indices.size() < count) {
        const auto index = static_cast<std::uint8_t>(random() & ((1U << depth) - 1));
        for (unsigned run = random() % runLength + 1; run > 0 && indices.size() < count; --run)
            indices.push_back(index);
    }
    return indices;
}

enum class Place { WholeCanvas, Inside, Anywhere };

GIFWriterFrame someFrame(Random& random, const GIFCase& gif, unsigned depth, Place place) {
    GIFWriterFrame frame;
    const auto upTo = [&](int bound) {
        return static_cast<std::uint16_t>(random() % (static_cast<unsigned>(bound) + 1));
    };
    frame.width = gif.width;
    frame.height = gif.height;
    if (place == Place::Inside) {
        frame.left = upTo(gif.width - 1);
        frame.top = upTo(gif.height - 1);
        frame.width = static_cast<std::uint16_t>(1 + upTo(gif.width - frame.left - 1));
        frame.height = static_cast<std::uint16_t>(1 + upTo(gif.height - frame.top - 1));
    } else if (place == Place::Anywhere) {
        frame.left = upTo(gif.width);
        frame.top = upTo(gif.height);
        frame.width = upTo(gif.width);
        frame.height = upTo(gif.height);
    }
    frame.indices = someIndices(random, std::size_t{frame.width} * frame.height, depth);
    frame.delayHundredths = upTo(20);
    if (random() % 3 == 0) frame.palette = somePalette(random, depth);
    return frame;
}

struct Kind {
    unsigned disposal;
    bool interlaced, transparent;
    GIFWriter::Packing packing;
    Place place;
};

GIFCase makeCase(const Shape& shape, const Kind& kind, unsigned seed) {
    Random random(seed);
    const auto palette = somePalette(random, shape.depth);
    GIFCase gif{"case " + std::to_string(seed),
                shape.width,
                shape.height,
                palette,
                {},
                GIFWriter(shape.width, shape.height, palette, shape.depth, kind.packing)};
    if (seed % 2 == 1)
        gif.file.comment("a comment").loopCount(3, seed % 4 == 1 ? "NETSCAPE2.0" : "ANIMEXTS1.0");
    for (unsigned i = 0; i < 5; ++i) {
        const Place place = i == 0 || random() % 4 == 0 ? Place::WholeCanvas : kind.place;
        GIFWriterFrame frame = someFrame(random, gif, shape.depth, place);
        frame.disposal = static_cast<std::uint8_t>(i % 2 == 0 ? kind.disposal : random() % 4);
        frame.interlaced = kind.interlaced;
        if (kind.transparent)
            frame.transparentIndex = frame.indices.empty() ? std::uint8_t{0} : frame.indices[0];
        gif.file.frame(frame);
        gif.frames.push_back(frame);
    }
    gif.file.trailer();
    return gif;
}

void paint(const GIFCase& gif, const GIFWriterFrame& frame, std::vector<std::uint32_t>& canvas,
           const std::function<std::uint32_t(std::size_t, std::uint32_t)>& pixel) {
    for (std::size_t i = 0; i < frame.indices.size(); ++i) {
        const std::size_t x = frame.left + i % frame.width, y = frame.top + i / frame.width;
        if (x >= gif.width || y >= gif.height) continue;
        std::uint32_t& at = canvas[y * gif.width + x];
        at = pixel(i, at);
    }
}

}  // namespace

void forEachGIFCase(const std::function<void(const GIFCase&)>& test) {
    using enum GIFWriter::Packing;
    unsigned seed = 0;
    for (const Shape& shape : kShapes)
        for (unsigned disposal = 0; disposal < 4; ++disposal)
            for (const bool interlaced : {false, true})
                for (const bool transparent : {false, true})
                    for (const auto packing : {Literals, Strings, DeferredClear})
                        for (const Place place : {Place::Inside, Place::Anywhere})
                            test(
                                makeCase(shape, {disposal, interlaced, transparent, packing, place}, seed++));
}

std::vector<std::vector<std::uint32_t>> expectedCanvases(const GIFCase& gif) {
    std::vector<std::vector<std::uint32_t>> shown;
    std::vector<std::uint32_t> canvas(std::size_t{gif.width} * gif.height, 0);
    for (const GIFWriterFrame& frame : gif.frames) {
        const std::vector<std::uint32_t> before = canvas;
        const auto& palette = frame.palette.empty() ? gif.palette : frame.palette;
        paint(gif, frame, canvas, [&](std::size_t i, std::uint32_t old) {
            const std::size_t index = frame.indices[i];
            if (index == frame.transparentIndex) return old;
            return 0xFF000000 | std::uint32_t{palette[3 * index]} << 16 |
                   std::uint32_t{palette[3 * index + 1]} << 8 | palette[3 * index + 2];
        });
        shown.push_back(canvas);
        if (frame.disposal == 2) paint(gif, frame, canvas, [](std::size_t, std::uint32_t) { return 0U; });
        if (frame.disposal == 3) canvas = before;
    }
    return shown;
}

void forEachDamage(
    const GIFWriter& file,
    const std::function<void(std::size_t, const std::vector<std::vector<std::uint8_t>>&)>& test) {
    constexpr std::size_t kFields = 11;  // the longest part of the structure has as many bytes
    const std::vector<std::uint8_t>& good = file.bytes();
    for (const std::size_t boundary : file.boundaries())
        for (std::size_t at = boundary; at < std::min(boundary + kFields, good.size()); ++at) {
            std::vector<std::vector<std::uint8_t>> damaged(6, good);
            const auto place = static_cast<std::ptrdiff_t>(at);
            damaged[0][at] ^= 0x01;
            damaged[1][at] ^= 0x80;
            damaged[2][at] ^= 0xFF;
            damaged[3].erase(damaged[3].begin() + place);
            damaged[4].insert(damaged[4].begin() + place, 0x2C);
            damaged[5].resize(at);
            test(at, damaged);
        }
}

}  // namespace kx::testing
