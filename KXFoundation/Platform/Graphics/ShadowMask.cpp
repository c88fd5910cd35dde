// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <cairo.h>

#include <KXFoundation/Platform/Graphics/BoxBlur.h>
#include <KXFoundation/Platform/Graphics/CairoPaths.h>
#include <KXFoundation/Platform/Graphics/ShadowMask.h>

namespace kx {

namespace {

constexpr double kLargestSigma = 256;
constexpr double kLargestRadius = 2048;

/// One direction: the shape's whole length, and the shorter one that is blurred in its place.
struct Extent {
    int first;      // the pixel at which the shadow begins
    int margin;     // pixels in front of the shape and behind it
    double start;   // the shape's first edge, from `first` on
    double length;  // of the shape, its middle taken out
    int middle;     // where the middle goes in
    int takenOut;   // how long it is

    Extent(double from, double size, double corner, int reach) : margin(reach + 1) {
        const int border = static_cast<int>(std::ceil(corner)) + reach + 2;
        first = static_cast<int>(std::floor(from)) - margin;
        start = from - first;
        takenOut = std::max(0, static_cast<int>(size) - 2 * border);
        length = size - takenOut;
        middle = margin + border;
    }
    [[nodiscard]] int blurredCount() const { return static_cast<int>(std::ceil(start + length)) + margin; }
    [[nodiscard]] int count() const { return blurredCount() + takenOut; }
    /// The blurred pixel that stands for the i-th of the whole.
    [[nodiscard]] int blurredIndex(int i) const { return i < middle ? i : std::max(middle, i - takenOut); }
};

/// From 0 to `most`; 0 also for what is no number.
double held(double value, double most) {
    return value > 0 ? std::min(value, most) : 0;
}

int strideFor(int width) {
    return cairo_format_stride_for_width(CAIRO_FORMAT_A8, width);
}

std::vector<std::uint8_t> drawShape(const Extent& across, const Extent& down, double corner, int stride) {
    const int height = down.blurredCount();
    std::vector<std::uint8_t> plane(static_cast<std::size_t>(stride) * static_cast<std::size_t>(height));
    cairo_surface_t* surface = cairo_image_surface_create_for_data(plane.data(), CAIRO_FORMAT_A8,
                                                                   across.blurredCount(), height, stride);
    cairo_t* cairo = cairo_create(surface);
    addRoundedRect(cairo, {across.start, down.start, across.length, down.length}, corner);
    cairo_fill(cairo);
    cairo_destroy(cairo);
    cairo_surface_destroy(surface);
    return plane;
}

/// The part [from, to) of `extent` that lies within the bounds, from 0 on.
struct Part {
    int from;
    int to;
};
Part partWithin(const Extent& extent, double low, double high) {
    const int from =
        static_cast<int>(std::clamp(std::floor(low) - extent.first, 0.0, double(extent.count())));
    const int to =
        static_cast<int>(std::clamp(std::ceil(high) - extent.first, double(from), double(extent.count())));
    return {from, to};
}

}  // namespace

ShadowMask shadowMask(NSRect shape, double cornerRadius, double sigma, NSRect bounds) {
    sigma = held(sigma, kLargestSigma);
    const double corner =
        held(cornerRadius, std::min({shape.size.width / 2, shape.size.height / 2, kLargestRadius}));
    const int reach = boxBlurReach(sigma);
    const Extent across(shape.origin.x, shape.size.width, corner, reach);
    const Extent down(shape.origin.y, shape.size.height, corner, reach);
    const Part columns = partWithin(across, bounds.origin.x, bounds.maxX());
    const Part rows = partWithin(down, bounds.origin.y, bounds.maxY());

    ShadowMask mask{across.first + columns.from,
                    down.first + rows.from,
                    columns.to - columns.from,
                    rows.to - rows.from,
                    0,
                    {}};
    if (mask.width == 0 || mask.height == 0) return mask;

    const int blurredStride = strideFor(across.blurredCount());
    std::vector<std::uint8_t> blurred = drawShape(across, down, corner, blurredStride);
    boxBlur(blurred, blurredStride, down.blurredCount(), sigma);

    mask.stride = strideFor(mask.width);
    mask.coverage.resize(static_cast<std::size_t>(mask.stride) * static_cast<std::size_t>(mask.height));
    for (int y = 0; y < mask.height; ++y) {
        const std::uint8_t* from =
            blurred.data() + std::ptrdiff_t{down.blurredIndex(rows.from + y)} * blurredStride;
        std::uint8_t* to = mask.coverage.data() + std::ptrdiff_t{y} * mask.stride;
        for (int x = 0; x < mask.width; ++x) to[x] = from[across.blurredIndex(columns.from + x)];
    }
    return mask;
}

}  // namespace kx
