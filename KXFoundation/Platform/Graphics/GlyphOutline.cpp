// SPDX-License-Identifier: MIT

#include <cairo.h>
#include <hb.h>

#include <KXFoundation/Platform/Graphics/CGMutablePath.h>
#include <KXFoundation/Platform/Graphics/GlyphOutline.h>

namespace kx {

namespace {

// Reading: HarfBuzz calls one of these for each element. Its y grows upwards.

NSPoint fromFont(float x, float y) noexcept {
    constexpr double kPoint = 1.0 / 1024;
    return {x * kPoint, -y * kPoint};
}
CGMutablePath& pathOf(void* data) noexcept {
    return *static_cast<CGMutablePath*>(data);
}

void moveTo(hb_draw_funcs_t*, void* path, hb_draw_state_t*, float x, float y, void*) {
    pathOf(path).moveToPoint(fromFont(x, y));
}
void lineTo(hb_draw_funcs_t*, void* path, hb_draw_state_t*, float x, float y, void*) {
    pathOf(path).addLineToPoint(fromFont(x, y));
}
void quadTo(hb_draw_funcs_t*, void* path, hb_draw_state_t*, float cx, float cy, float x, float y, void*) {
    pathOf(path).addQuadCurveToPoint(fromFont(cx, cy), fromFont(x, y));
}
void cubicTo(hb_draw_funcs_t*, void* path, hb_draw_state_t*, float ax, float ay, float bx, float by, float x,
             float y, void*) {
    pathOf(path).addCurveToPoint(fromFont(ax, ay), fromFont(bx, by), fromFont(x, y));
}
void close(hb_draw_funcs_t*, void* path, hb_draw_state_t*, void*) {
    pathOf(path).closeSubpath();
}

hb_draw_funcs_t* makeReader() {
    hb_draw_funcs_t* reader = hb_draw_funcs_create();
    hb_draw_funcs_set_move_to_func(reader, moveTo, nullptr, nullptr);
    hb_draw_funcs_set_line_to_func(reader, lineTo, nullptr, nullptr);
    hb_draw_funcs_set_quadratic_to_func(reader, quadTo, nullptr, nullptr);
    hb_draw_funcs_set_cubic_to_func(reader, cubicTo, nullptr, nullptr);
    hb_draw_funcs_set_close_path_func(reader, close, nullptr, nullptr);
    hb_draw_funcs_make_immutable(reader);
    return reader;
}

// Tracing.

/// Cairo keeps coordinates in 1/256 of a pixel, so outlines are traced at this many pixels to the em.
constexpr double kTracedSize = 2048;

void prepareTracing(cairo_t* tracer, cairo_scaled_font_t* font) {
    cairo_matrix_t size;
    cairo_scaled_font_get_font_matrix(font, &size);
    const double scale = size.yy > 0 ? kTracedSize / size.yy : 1;
    cairo_scale(tracer, scale, scale);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_scaled_font_get_font_options(font, options);
    cairo_set_font_options(tracer, options);
    cairo_font_options_destroy(options);
    cairo_set_font_face(tracer, cairo_scaled_font_get_font_face(font));
    cairo_set_font_matrix(tracer, &size);
}

NSPoint pointOf(const cairo_path_data_t& data) noexcept {
    return {data.point.x, data.point.y};
}

void addPiece(CGMutablePath& outline, const cairo_path_data_t* piece) {
    switch (piece->header.type) {
        case CAIRO_PATH_MOVE_TO:
            return outline.moveToPoint(pointOf(piece[1]));
        case CAIRO_PATH_LINE_TO:
            return outline.addLineToPoint(pointOf(piece[1]));
        case CAIRO_PATH_CURVE_TO:
            return outline.addCurveToPoint(pointOf(piece[1]), pointOf(piece[2]), pointOf(piece[3]));
        case CAIRO_PATH_CLOSE_PATH:
            return outline.closeSubpath();
    }
}

/// What was traced, without the point of its own that Cairo ends each path with.
void addTraced(CGMutablePath& outline, cairo_t* tracer) {
    cairo_path_t* path = cairo_copy_path(tracer);
    for (int i = 0, next = 0; i < path->num_data; i = next) {
        next = i + path->data[i].header.length;
        const bool leadsNowhere = path->data[i].header.type == CAIRO_PATH_MOVE_TO && next == path->num_data;
        if (!leadsNowhere) addPiece(outline, &path->data[i]);
    }
    cairo_path_destroy(path);
}

}  // namespace

std::shared_ptr<const CGMutablePath> readOutline(hb_font_t* font, std::uint32_t glyph) {
    static hb_draw_funcs_t* const reader = makeReader();
    auto outline = CGMutablePath::path();
#if HB_VERSION_ATLEAST(7, 0, 0)
    hb_font_draw_glyph(font, glyph, reader, outline.get());
#else
    hb_font_get_glyph_shape(font, glyph, reader, outline.get());
#endif
    return outline;
}

std::shared_ptr<const CGMutablePath> traceOutline(cairo_scaled_font_t* font, std::uint32_t glyph) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1);
    cairo_t* tracer = cairo_create(surface);
    cairo_surface_destroy(surface);
    prepareTracing(tracer, font);
    const cairo_glyph_t at{glyph, 0, 0};
    cairo_glyph_path(tracer, &at, 1);
    auto outline = CGMutablePath::path();
    addTraced(*outline, tracer);
    cairo_destroy(tracer);
    return outline;
}

}  // namespace kx
