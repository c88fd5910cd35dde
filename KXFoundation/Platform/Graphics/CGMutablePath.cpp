// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>
#include <cstddef>

#include <KXFoundation/Platform/Graphics/BezierExtent.h>
#include <KXFoundation/Platform/Graphics/CGMutablePath.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>

namespace kx {

std::shared_ptr<CGMutablePath> CGMutablePath::path() {
    return make<CGMutablePath>();
}

void CGMutablePath::add(Element element, std::span<const NSPoint> points) {
    const auto isFinite = [](NSPoint point) { return std::isfinite(point.x) && std::isfinite(point.y); };
    if (!std::ranges::all_of(points, isFinite))
        return callerError("CGMutablePath: a point that is not finite");
    if (elements_.empty() && element != Element::MoveToPoint) {
        return callerError("CGMutablePath: a line or curve without a point to begin at");
    }
    elements_.push_back(element);
    points_.insert(points_.end(), points.begin(), points.end());
    if (element == Element::MoveToPoint) subpathStart_ = points.front();
}

void CGMutablePath::moveToPoint(NSPoint point) {
    add(Element::MoveToPoint, {&point, 1});
}

void CGMutablePath::addLineToPoint(NSPoint point) {
    add(Element::AddLineToPoint, {&point, 1});
}

void CGMutablePath::addQuadCurveToPoint(NSPoint control, NSPoint point) {
    const NSPoint points[] = {control, point};
    add(Element::AddQuadCurveToPoint, points);
}

void CGMutablePath::addCurveToPoint(NSPoint control1, NSPoint control2, NSPoint point) {
    const NSPoint points[] = {control1, control2, point};
    add(Element::AddCurveToPoint, points);
}

void CGMutablePath::closeSubpath() {
    if (!elements_.empty() && elements_.back() != Element::CloseSubpath) add(Element::CloseSubpath, {});
}

void CGMutablePath::addRect(NSRect rect) {
    moveToPoint(rect.origin);
    addLineToPoint({rect.maxX(), rect.origin.y});
    addLineToPoint({rect.maxX(), rect.maxY()});
    addLineToPoint({rect.origin.x, rect.maxY()});
    closeSubpath();
}

void CGMutablePath::reserve(std::size_t elements, std::size_t points) {
    const auto makeRoom = [](auto& list, std::size_t more) {
        const std::size_t wanted = list.size() + more;
        if (wanted > list.capacity()) list.reserve(std::max(wanted, 2 * list.capacity()));
    };
    makeRoom(elements_, elements);
    makeRoom(points_, points);
}

void CGMutablePath::addPath(const CGMutablePath& other, const NSPoint& translation) {
    if (!std::isfinite(translation.x + translation.y)) {
        return callerError("CGMutablePath: a translation that is not finite");
    }
    if (other.isEmpty()) return;
    const NSPoint by = translation;  // it may be one of this path's own points
    // The other path may be this one, so both counts are taken before anything grows.
    const std::size_t elements = other.elements_.size(), points = other.points_.size();
    reserve(elements, points);
    elements_.insert(elements_.end(), other.elements_.data(), other.elements_.data() + elements);
    points_.insert(points_.end(), other.points_.data(), other.points_.data() + points);
    for (NSPoint& point : std::span(points_).last(points)) {
        point = {point.x + by.x, point.y + by.y};
    }
    subpathStart_ = {other.subpathStart_.x + by.x, other.subpathStart_.y + by.y};
}

void CGMutablePath::translate(NSPoint by) {
    if (!std::isfinite(by.x + by.y)) return callerError("CGMutablePath: a translation that is not finite");
    const auto move = [by](NSPoint& point) { point = {point.x + by.x, point.y + by.y}; };
    std::ranges::for_each(points_, move);
    move(subpathStart_);
}

NSPoint CGMutablePath::currentPoint() const noexcept {
    if (isEmpty()) return {};
    return elements_.back() == Element::CloseSubpath ? subpathStart_ : points_.back();
}

namespace {

NSRect rectAround(const Extent& x, const Extent& y) noexcept {
    if (x.isEmpty()) return {};
    return {x.from, y.from, x.to - x.from, y.to - y.from};
}

}  // namespace

NSRect CGMutablePath::boundingBox() const noexcept {
    Extent x, y;
    for (const NSPoint point : points_) {
        x.include(point.x);
        y.include(point.y);
    }
    return rectAround(x, y);
}

NSRect CGMutablePath::pathBoundingBox() const noexcept {
    Extent x, y;
    const NSPoint* next = points_.data();
    NSPoint from, start;
    for (const Element element : elements_) {
        const std::size_t count = pointsOf(element);
        if (element == Element::MoveToPoint) start = *next;
        if (element == Element::CloseSubpath) from = start;
        if (count == 0) continue;
        double alongX[4] = {from.x}, alongY[4] = {from.y};
        for (std::size_t i = 0; i < count; ++i) {
            alongX[i + 1] = next[i].x;
            alongY[i + 1] = next[i].y;
        }
        const bool moves = element == Element::MoveToPoint;
        x.includeCurve(std::span(alongX).subspan(moves, count + !moves));
        y.includeCurve(std::span(alongY).subspan(moves, count + !moves));
        next += count;
        from = next[-1];
    }
    return rectAround(x, y);
}

std::string CGMutablePath::description() const {
    return "<CGMutablePath of " + std::to_string(elements_.size()) + " elements>";
}

bool CGMutablePath::isEqual(const NSObject& other) const {
    if (!other.isKindOfClass(classObject())) return false;
    const auto& path = static_cast<const CGMutablePath&>(other);
    return elements_ == path.elements_ && points_ == path.points_;
}

}  // namespace kx
