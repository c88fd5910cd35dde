// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <span>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

class GraphicsContext;
class NSColor;

/// An outline of lines and curves, in points. y grows downwards, as everywhere here, so an outline is drawn
/// upright as it is. One thread at a time.
///
/// A coordinate that is no finite number, or a line or curve that has no point to begin at, is a caller error
/// and adds nothing.
class KX_EXPORT CGMutablePath : public Subclass<CGMutablePath, NSObject> {
  public:
    enum class Element : std::uint8_t {
        MoveToPoint,          ///< one point
        AddLineToPoint,       ///< one point
        AddQuadCurveToPoint,  ///< a control point and the end
        AddCurveToPoint,      ///< two control points and the end
        CloseSubpath,         ///< no point
    };

    [[nodiscard]] static std::shared_ptr<CGMutablePath> path();

    void moveToPoint(NSPoint point);
    void addLineToPoint(NSPoint point);
    void addQuadCurveToPoint(NSPoint control, NSPoint point);
    void addCurveToPoint(NSPoint control1, NSPoint control2, NSPoint point);
    /// Back to where the subpath began; nothing if there is none.
    void closeSubpath();
    void addRect(NSRect rect);
    /// Appends the other path, moved by `translation`.
    void addPath(const CGMutablePath& other, const NSPoint& translation = {});
    /// Makes room for so many more, so that what is added next allocates nothing.
    void reserve(std::size_t elements, std::size_t points);
    /// Moves all of it.
    void translate(NSPoint by);

    [[nodiscard]] bool isEmpty() const noexcept { return elements_.empty(); }
    /// Where the next line begins; (0, 0) for an empty path.
    [[nodiscard]] NSPoint currentPoint() const noexcept;
    /// Around all points, those that control curves included; cheap. Zero for an empty path.
    [[nodiscard]] NSRect boundingBox() const noexcept;
    /// Around the lines and curves themselves.
    [[nodiscard]] NSRect pathBoundingBox() const noexcept;

    /// The elements in order and, one after the other, their points. Valid until the path changes.
    [[nodiscard]] std::span<const Element> elements() const noexcept { return elements_; }
    [[nodiscard]] std::span<const NSPoint> points() const noexcept { return points_; }
    [[nodiscard]] static constexpr std::size_t pointsOf(Element element) noexcept {
        constexpr std::size_t counts[] = {1, 1, 2, 3, 0};
        return counts[static_cast<std::size_t>(element)];
    }

    /// Paints what is inside; open subpaths count as closed. Where subpaths overlap, those that run opposite
    /// ways cut holes (the winding rule).
    void fill(GraphicsContext& context, const NSColor& color) const;
    /// Paints a line of that width along it.
    void stroke(GraphicsContext& context, double width, const NSColor& color) const;

    [[nodiscard]] std::string description() const override;
    /// Equal elements with equal points.
    [[nodiscard]] bool isEqual(const NSObject& other) const override;

  protected:
    CGMutablePath() = default;

  private:
    void add(Element element, std::span<const NSPoint> points);

    std::vector<Element> elements_;
    std::vector<NSPoint> points_;
    NSPoint subpathStart_;
};

}  // namespace kx
