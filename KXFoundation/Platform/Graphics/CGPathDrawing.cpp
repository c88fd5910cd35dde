// SPDX-License-Identifier: MIT

#include <algorithm>

#include <cairo.h>

#include <KXFoundation/Platform/Graphics/CGMutablePath.h>
#include <KXFoundation/Platform/Graphics/CairoAccess.h>
#include <KXFoundation/Platform/Graphics/CairoPaths.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>

namespace kx {

namespace {

/// Cairo knows cubic curves only. One of the same shape has its control points two thirds of the way from the
/// ends to the quadratic one's.
void addQuadCurve(cairo_t* cairo, NSPoint control, NSPoint end) {
    NSPoint start;
    cairo_get_current_point(cairo, &start.x, &start.y);
    const auto towards = [control](NSPoint from) {
        return NSPoint{from.x + (control.x - from.x) * 2 / 3, from.y + (control.y - from.y) * 2 / 3};
    };
    const NSPoint first = towards(start), second = towards(end);
    cairo_curve_to(cairo, first.x, first.y, second.x, second.y, end.x, end.y);
}

void addElement(cairo_t* cairo, CGMutablePath::Element element, const NSPoint (&p)[3]) {
    switch (element) {
        case CGMutablePath::Element::MoveToPoint:
            return cairo_move_to(cairo, p[0].x, p[0].y);
        case CGMutablePath::Element::AddLineToPoint:
            return cairo_line_to(cairo, p[0].x, p[0].y);
        case CGMutablePath::Element::AddQuadCurveToPoint:
            return addQuadCurve(cairo, p[0], p[1]);
        case CGMutablePath::Element::AddCurveToPoint:
            return cairo_curve_to(cairo, p[0].x, p[0].y, p[1].x, p[1].y, p[2].x, p[2].y);
        case CGMutablePath::Element::CloseSubpath:
            return cairo_close_path(cairo);
    }
}

void addPath(cairo_t* cairo, const CGMutablePath& path) {
    auto next = path.points().begin();
    for (const auto element : path.elements()) {
        NSPoint points[3];
        for (std::size_t i = 0; i < CGMutablePath::pointsOf(element); ++i) {
            points[i] = withinReach({*next++, {}}).origin;
        }
        addElement(cairo, element, points);
    }
}

cairo_t* preparedFor(GraphicsContext& context, const CGMutablePath& path, const NSColor& color) {
    cairo_t* cairo = cairoHandle(context);
    const ColorComponents c = color.components();
    cairo_set_source_rgba(cairo, c.red, c.green, c.blue, c.alpha);
    addPath(cairo, path);
    return cairo;
}

}  // namespace

void CGMutablePath::fill(GraphicsContext& context, const NSColor& color) const {
    cairo_fill(preparedFor(context, *this, color));
}

void CGMutablePath::stroke(GraphicsContext& context, double width, const NSColor& color) const {
    if (!(width > 0)) return;
    cairo_t* cairo = preparedFor(context, *this, color);
    cairo_set_line_width(cairo, width);
    cairo_stroke(cairo);
}

}  // namespace kx
