#pragma once

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
};

struct NSEdgeInsets {
    double top = 0;
    double left = 0;
    double bottom = 0;
    double right = 0;
    bool operator==(const NSEdgeInsets&) const = default;
};

}  // namespace kx
