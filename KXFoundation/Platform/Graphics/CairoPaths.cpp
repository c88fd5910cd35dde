#include <algorithm>
#include <cmath>
#include <numbers>

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
    constexpr double quarter = std::numbers::pi / 2;
    const double radius = std::min(cornerRadius, std::min(rect.size.width, rect.size.height) / 2);
    if (!(radius > 0)) {
        cairo_rectangle(cairo, rect.origin.x, rect.origin.y, rect.size.width, rect.size.height);
        return;
    }
    cairo_new_sub_path(cairo);
    cairo_arc(cairo, rect.maxX() - radius, rect.origin.y + radius, radius, -quarter, 0);
    cairo_arc(cairo, rect.maxX() - radius, rect.maxY() - radius, radius, 0, quarter);
    cairo_arc(cairo, rect.origin.x + radius, rect.maxY() - radius, radius, quarter, 2 * quarter);
    cairo_arc(cairo, rect.origin.x + radius, rect.origin.y + radius, radius, 2 * quarter, 3 * quarter);
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
