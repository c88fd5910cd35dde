// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstring>

#include <KXFoundation/Platform/Graphics/GIF/GIFCanvas.h>

namespace kx {

namespace {

std::uint32_t cutOff(std::uint32_t start, std::uint32_t length, std::uint32_t bound) noexcept {
    return start < bound ? std::min(length, bound - start) : 0;
}

// The n-th row in the file: those at multiples of 8, then the ones between at every 4th, 2nd and next row.
std::uint32_t interlacedRow(std::uint32_t n, std::uint32_t height) noexcept {
    constexpr struct { std::uint32_t start, step; } kPasses[] = {{0, 8}, {4, 8}, {2, 4}, {1, 2}};
    for (const auto& [start, step] : kPasses) {
        const std::uint32_t rows = height > start ? (height - start + step - 1) / step : 0;
        if (n < rows) return start + n * step;
        n -= rows;
    }
    return height;
}

}  // namespace

GIFCanvas::GIFCanvas(std::uint32_t width, std::uint32_t height, VectorSpeed speed) noexcept
    : width_(width), height_(height), palette_(speed) {}

GIFCanvas::Rows GIFCanvas::rowsOf(const GIFFrame& frame, std::size_t reached) const noexcept {
    return {frame.rect, cutOff(frame.rect.left, frame.rect.width, width_), frame.interlaced, reached};
}

// action(x, y, offset): each row on the canvas, with the place of its first index.
template <class Action>
void GIFCanvas::forEachRow(const Rows& rows, Action action) const {
    const GIFRect& rect = rows.rect;
    if (rows.visible == 0 || rect.top >= height_) return;
    std::uint32_t n = 0;
    for (std::size_t offset = 0; offset < rows.reached; offset += rect.width, ++n) {
        const std::uint32_t y = rect.top + (rows.interlaced ? interlacedRow(n, rect.height) : n);
        if (y < height_) action(rect.left, y, offset);
    }
}

void GIFCanvas::restart() noexcept {
    first_ = true;
    disposal_ = GIFDisposal::Keep;
}

void GIFCanvas::paint(const GIFFrame& frame, std::span<const std::uint8_t> indices, GIFPixels pixels) {
    const bool hidesAll = frame.hidesCanvas(width_, height_) && indices.size() == frame.rect.area();
    if (hidesAll && frame.disposal != GIFDisposal::Previous)
        disposal_ = GIFDisposal::Keep;
    else if (first_)
        clearAll(pixels);
    else
        dispose(pixels);
    paintRows(frame, indices, pixels);
}

void GIFCanvas::paint(const GIFFrame& frame, std::span<const std::uint8_t> indices, GIFPixels pixels,
                      GIFPixels previous) {
    const bool hidesAll = frame.hidesCanvas(width_, height_) && indices.size() == frame.rect.area();
    if (!first_ && (!hidesAll || frame.disposal == GIFDisposal::Previous)) copyAll(previous, pixels);
    paint(frame, indices, pixels);
}

void GIFCanvas::paintRows(const GIFFrame& frame, std::span<const std::uint8_t> indices, GIFPixels pixels) {
    first_ = false;
    last_ = rowsOf(frame, indices.size());
    disposal_ = frame.disposal;
    if (disposal_ == GIFDisposal::Previous) keepForLater(pixels);

    palette_.use(frame.palette);
    const bool oneRun = !frame.interlaced && last_.visible == frame.rect.width && frame.rect.left == 0 &&
                        pixels.stride == std::size_t{last_.visible} * 4 && frame.rect.top < height_;
    if (oneRun) {
        const std::size_t room = std::size_t{height_ - frame.rect.top} * width_;
        palette_.paint(pixels.at(0, frame.rect.top), indices.first(std::min(room, indices.size())),
                       frame.transparentIndex);
        return;
    }
    forEachRow(last_, [&](std::uint32_t x, std::uint32_t y, std::size_t offset) {
        const std::size_t count = std::min<std::size_t>(last_.visible, indices.size() - offset);
        palette_.paint(pixels.at(x, y), indices.subspan(offset, count), frame.transparentIndex);
    });
}

void GIFCanvas::dispose(GIFPixels pixels) {
    const std::size_t length = std::size_t{last_.visible} * 4;
    const std::uint8_t* back = covered_.data();
    switch (disposal_) {
        case GIFDisposal::Keep:
            return;
        case GIFDisposal::Background:
            forEachRow(last_, [&](std::uint32_t x, std::uint32_t y, std::size_t) {
                std::memset(pixels.at(x, y), 0, length);
            });
            return;
        case GIFDisposal::Previous:
            forEachRow(last_, [&](std::uint32_t x, std::uint32_t y, std::size_t) {
                std::memcpy(pixels.at(x, y), back, length);
                back += length;
            });
            return;
    }
}

void GIFCanvas::keepForLater(GIFPixels pixels) {
    const std::size_t length = std::size_t{last_.visible} * 4;
    const std::size_t rows = last_.reached / std::max<std::uint32_t>(1, last_.rect.width) + 1;
    covered_.clear();
    covered_.reserve(length * std::min<std::size_t>(rows, height_));
    forEachRow(last_, [&](std::uint32_t x, std::uint32_t y, std::size_t) {
        covered_.insert(covered_.end(), pixels.at(x, y), pixels.at(x, y) + length);
    });
}

void GIFCanvas::clearAll(GIFPixels pixels) const noexcept {
    for (std::uint32_t y = 0; y < height_; ++y) std::memset(pixels.at(0, y), 0, std::size_t{width_} * 4);
}

void GIFCanvas::copyAll(GIFPixels from, GIFPixels to) const noexcept {
    for (std::uint32_t y = 0; y < height_; ++y)
        std::memcpy(to.at(0, y), from.at(0, y), std::size_t{width_} * 4);
}

}  // namespace kx
