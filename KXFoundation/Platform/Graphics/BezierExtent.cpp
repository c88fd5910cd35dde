// SPDX-License-Identifier: MIT

#include <array>
#include <cmath>
#include <cstddef>

#include <KXFoundation/Platform/Graphics/BezierExtent.h>

namespace kx {

namespace {

/// The curve at t, by de Casteljau's construction.
double valueAt(std::span<const double> points, double t) noexcept {
    std::array<double, 4> row{};
    std::ranges::copy(points, row.begin());
    for (std::size_t left = points.size() - 1; left > 0; --left) {
        for (std::size_t i = 0; i < left; ++i) row[i] += (row[i + 1] - row[i]) * t;
    }
    return row[0];
}

/// Where a t² + b t + c is 0; NaN in place of a root that there is not.
std::array<double, 2> rootsOf(double a, double b, double c) noexcept {
    const double root = std::sqrt(b * b - 4 * a * c);
    // Of -b ± root the one without cancellation; the other root follows from the product of both.
    const double q = -0.5 * (b + std::copysign(root, b));
    return {q / a, c / q};
}

}  // namespace

void Extent::includeCurve(std::span<const double> points) noexcept {
    include(points.front());
    include(points.back());
    std::array<double, 2> turns{};
    if (points.size() == 3) {
        turns[0] = (points[0] - points[1]) / (points[0] - 2 * points[1] + points[2]);
    } else if (points.size() == 4) {
        const double d0 = points[1] - points[0], d1 = points[2] - points[1], d2 = points[3] - points[2];
        turns = rootsOf(d0 - 2 * d1 + d2, 2 * (d1 - d0), d0);
    }
    for (const double t : turns) {
        if (t > 0 && t < 1) include(valueAt(points, t));
    }
}

}  // namespace kx
