// SPDX-License-Identifier: MIT
#pragma once

#include <algorithm>

/// Sizes and places in points, as 64-bit floats. The origin of a view is its top left corner and y grows
/// downwards, in views, windows and pictures alike.
namespace kx {

struct NSPoint {
    double x = 0;
    double y = 0;
    bool operator==(const NSPoint&) const = default;
};

struct NSSize {
    double width = 0;
    double height = 0;
    bool operator==(const NSSize&) const = default;
};

struct NSRect {
    NSPoint origin;
    NSSize size;

    constexpr NSRect() = default;
    constexpr NSRect(NSPoint o, NSSize s) : origin(o), size(s) {}
    constexpr NSRect(double x, double y, double width, double height) : origin{x, y}, size{width, height} {}
    bool operator==(const NSRect&) const = default;

    [[nodiscard]] constexpr double maxX() const { return origin.x + size.width; }
    [[nodiscard]] constexpr double maxY() const { return origin.y + size.height; }

    /// The left and top edges belong to the rectangle, the right and bottom edges do not.
    [[nodiscard]] constexpr bool contains(NSPoint p) const {
        return p.x >= origin.x && p.y >= origin.y && p.x < maxX() && p.y < maxY();
    }
    /// Whether it covers nothing; a negative size covers nothing either.
    [[nodiscard]] constexpr bool isEmpty() const { return !(size.width > 0 && size.height > 0); }
    [[nodiscard]] constexpr NSRect movedBy(NSPoint by) const {
        return {{origin.x + by.x, origin.y + by.y}, size};
    }
    /// With each edge moved inwards by so much.
    [[nodiscard]] constexpr NSRect insetBy(double dx, double dy) const {
        return {origin.x + dx, origin.y + dy, size.width - 2 * dx, size.height - 2 * dy};
    }
    /// What both cover; empty if they do not meet.
    [[nodiscard]] constexpr NSRect intersection(const NSRect& other) const {
        const double x = std::max(origin.x, other.origin.x);
        const double y = std::max(origin.y, other.origin.y);
        return {x, y, std::max(0.0, std::min(maxX(), other.maxX()) - x),
                std::max(0.0, std::min(maxY(), other.maxY()) - y)};
    }
    /// The smallest rectangle that covers both; an empty one adds nothing.
    [[nodiscard]] constexpr NSRect unionWith(const NSRect& other) const {
        if (isEmpty()) return other;
        if (other.isEmpty()) return *this;
        const double x = std::min(origin.x, other.origin.x);
        const double y = std::min(origin.y, other.origin.y);
        return {x, y, std::max(maxX(), other.maxX()) - x, std::max(maxY(), other.maxY()) - y};
    }
};

struct NSEdgeInsets {
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;
    bool operator==(const NSEdgeInsets&) const = default;
};

}  // namespace kx
