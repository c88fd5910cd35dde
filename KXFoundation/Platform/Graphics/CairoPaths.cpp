// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <cairo.h>

#include <KXFoundation/Platform/Graphics/CairoPaths.h>

namespace kx {

namespace {

// Cairo holds device coordinates in 24.8 bits; this leaves a factor of 8 for the scale.
constexpr double kReach = 1 << 20;

double heldToReach(double coordinate) noexcept {
    return std::clamp(coordinate, -kReach, kReach);
}

}  // namespace

void addRoundedRect(cairo_t* cairo, NSRect rect, double cornerRadius) {
    // How far the handles of a curve lie along the tangents, for a quarter of a circle; it misses the circle
    // by 0.03 % of the radius. Cairo's own arcs are the same curve, at several times the cost.
    constexpr double kHandle = 0.5522847498307936;
    const double radius = std::min(cornerRadius, std::min(rect.size.width, rect.size.height) / 2);
    if (!(radius > 0)) {
        cairo_rectangle(cairo, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
        return;
    }
    const double left = rect.origin.x, top = rect.origin.y, right = rect.maxX(), bottom = rect.maxY();
    const double rest = radius * (1 - kHandle);
    cairo_move_to(cairo, right - radius, top);
    cairo_curve_to(cairo, right - rest, top, right, top + rest, right, top + radius);
    cairo_line_to(cairo, right, bottom - radius);
    cairo_curve_to(cairo, right, bottom - rest, right - rest, bottom, right - radius, bottom);
    cairo_line_to(cairo, left + radius, bottom);
    cairo_curve_to(cairo, left + rest, bottom, left, bottom - rest, left, bottom - radius);
    cairo_line_to(cairo, left, top + radius);
    cairo_curve_to(cairo, left, top + rest, left + rest, top, left + radius, top);
    cairo_close_path(cairo);
}

bool isDrawable(NSRect rect) noexcept {
    return std::isfinite(rect.origin.x) && std::isfinite(rect.origin.y) && std::isfinite(rect.maxX()) &&
           std::isfinite(rect.maxY()) && rect.size.width > 0 && rect.size.height > 0;
}

NSRect withinReach(NSRect rect) noexcept {
    const NSPoint from{heldToReach(rect.origin.x), heldToReach(rect.origin.y)};
    return {from, {heldToReach(rect.maxX()) - from.x, heldToReach(rect.maxY()) - from.y}};
}

}  // namespace kx
