// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>
#include <limits>
#include <span>

namespace kx {

/// How far points and Bézier curves reach along one axis.
struct Extent {
    double from = std::numeric_limits<double>::infinity();
    double to = -std::numeric_limits<double>::infinity();

    [[nodiscard]] bool isEmpty() const noexcept { return from > to; }
    void include(double at) noexcept {
        from = std::min(from, at);
        to = std::max(to, at);
    }
    /// A curve of one (a point) to four points: it reaches furthest at its ends and where its derivative is
    /// 0.
    void includeCurve(std::span<const double> points) noexcept;
};

}  // namespace kx
