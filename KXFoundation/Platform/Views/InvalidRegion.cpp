// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>
#include <limits>

#include <KXFoundation/Platform/Views/InvalidRegion.h>

namespace kx {

namespace {

double area(const NSRect& rect) {
    return rect.size.width * rect.size.height;
}

/// How much joining the two would draw in vain.
double waste(const NSRect& a, const NSRect& b) {
    return area(a.unionWith(b)) - area(a) - area(b);
}

std::uint32_t pixel(double edge, std::uint32_t limit) {
    return static_cast<std::uint32_t>(std::clamp(edge, 0.0, static_cast<double>(limit)));
}

PixelRect touched(const NSRect& rect, double scale, std::uint32_t wide, std::uint32_t high) {
    constexpr double kTolerance =
        1e-6;  // an edge that a rounding error puts across a pixel edge touches nothing
    const std::uint32_t x = pixel(std::floor(rect.origin.x * scale + kTolerance), wide);
    const std::uint32_t y = pixel(std::floor(rect.origin.y * scale + kTolerance), high);
    return {x, y, pixel(std::ceil(rect.maxX() * scale - kTolerance), wide) - x,
            pixel(std::ceil(rect.maxY() * scale - kTolerance), high) - y};
}

}  // namespace

void InvalidRegion::add(NSRect rect) {
    if (rect.isEmpty()) return;
    const auto worthJoining = [&](const NSRect& other) { return waste(rect, other) <= 0; };
    for (auto other = std::find_if(rects_.begin(), rects_.end(), worthJoining); other != rects_.end();
         other = std::find_if(rects_.begin(), rects_.end(), worthJoining)) {
        rect = rect.unionWith(*other);
        rects_.erase(other);
    }
    rects_.push_back(rect);
    if (rects_.size() > kMostRects) joinCheapestPair();
}

void InvalidRegion::joinCheapestPair() {
    std::size_t first = 0;
    std::size_t second = 1;
    double least = std::numeric_limits<double>::infinity();
    for (std::size_t i = 0; i < rects_.size(); ++i) {
        for (std::size_t j = i + 1; j < rects_.size(); ++j) {
            const double cost = waste(rects_[i], rects_[j]);
            if (cost >= least) continue;
            least = cost;
            first = i;
            second = j;
        }
    }
    const NSRect joined = rects_[first].unionWith(rects_[second]);
    rects_.erase(rects_.begin() + static_cast<std::ptrdiff_t>(second));
    rects_.erase(rects_.begin() + static_cast<std::ptrdiff_t>(first));
    add(joined);
}

std::vector<PixelRect> InvalidRegion::pixels(double scale, std::uint32_t wide, std::uint32_t high) const {
    std::vector<PixelRect> pixels;
    for (const NSRect& rect : rects_) {
        const PixelRect found = touched(rect, scale, wide, high);
        if (found.width > 0 && found.height > 0) pixels.push_back(found);
    }
    return pixels;
}

}  // namespace kx
