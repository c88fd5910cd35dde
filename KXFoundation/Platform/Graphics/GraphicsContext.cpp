// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>
#include <vector>

#include <cairo.h>

#include <KXFoundation/Platform/Graphics/CairoAccess.h>
#include <KXFoundation/Platform/Graphics/CairoPaths.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/LaidOutText.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Graphics/ShadowMask.h>
#include <KXFoundation/Platform/Graphics/TextLayout.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>

namespace kx {

namespace {

thread_local GraphicsContext* threadContext = nullptr;

cairo_surface_t* surfaceOver(const std::uint32_t* pixels, std::uint32_t wide, std::uint32_t high) {
    // Cairo only writes where a surface is drawn on; a source is not.
    auto* bytes = reinterpret_cast<unsigned char*>(const_cast<std::uint32_t*>(pixels));
    return cairo_image_surface_create_for_data(bytes, CAIRO_FORMAT_ARGB32, static_cast<int>(wide),
                                               static_cast<int>(high), static_cast<int>(wide) * 4);
}

cairo_surface_t* surfaceOver(const NSBitmapImageRep& bitmap) {
    return surfaceOver(bitmap.pixels().data(), bitmap.pixelsWide(), bitmap.pixelsHigh());
}

/// The bitmap laid over the rectangle of the coordinates of the moment.
cairo_pattern_t* patternOver(const NSBitmapImageRep& bitmap, NSRect rect) {
    cairo_surface_t* surface = surfaceOver(bitmap);
    cairo_pattern_t* pattern = cairo_pattern_create_for_surface(surface);
    cairo_surface_destroy(surface);
    cairo_matrix_t matrix;
    cairo_matrix_init_scale(&matrix, bitmap.pixelsWide() / rect.size.width,
                            bitmap.pixelsHigh() / rect.size.height);
    cairo_matrix_translate(&matrix, -rect.origin.x, -rect.origin.y);
    cairo_pattern_set_matrix(pattern, &matrix);
    cairo_pattern_set_extend(pattern, CAIRO_EXTEND_PAD);  // no fringe at the picture's edges
    cairo_pattern_set_filter(pattern, CAIRO_FILTER_GOOD);
    return pattern;
}

}  // namespace

struct GraphicsContext::Native {
    enum class Kind : std::uint8_t { State, Layer, Mask };
    struct Saved {
        Kind kind;
        std::shared_ptr<const NSBitmapImageRep> pixels = nullptr;  // those of the mask
        cairo_pattern_t* mask = nullptr;
    };

    std::shared_ptr<NSBitmapImageRep> bitmap;
    double scale;
    cairo_t* cairo;
    std::vector<Saved> saved;

    Native(std::shared_ptr<NSBitmapImageRep> target, double pixelsPerPoint)
        : bitmap(std::move(target)), scale(pixelsPerPoint) {
        bitmap->addContexts(1);
        cairo_surface_t* surface = surfaceOver(*bitmap);
        cairo = cairo_create(surface);
        cairo_surface_destroy(surface);
        cairo_scale(cairo, scale, scale);
    }
    ~Native() {
        while (!saved.empty()) close();
        cairo_destroy(cairo);
        bitmap->addContexts(-1);
    }
    Native(const Native&) = delete;
    Native& operator=(const Native&) = delete;

    /// Closes the innermost saved state, layer or mask; a layer is put down as it is.
    void close() {
        const Saved& last = saved.back();
        if (last.kind == Kind::Layer) putLayer(1);
        if (last.kind == Kind::Mask) putMasked(last.mask);
        cairo_restore(cairo);
        saved.pop_back();
    }
    void putLayer(double opacity) {
        cairo_pop_group_to_source(cairo);
        cairo_paint_with_alpha(cairo, opacity);
    }
    void putMasked(cairo_pattern_t* mask) {
        cairo_pop_group_to_source(cairo);
        cairo_mask(cairo, mask);
        cairo_pattern_destroy(mask);
    }
    /// Whether the innermost of saved states and layers is of that kind; masks inside it are closed.
    bool closeMasksInside(Kind kind) {
        const auto outer =
            std::find_if(saved.rbegin(), saved.rend(), [](const Saved& s) { return s.kind != Kind::Mask; });
        if (outer == saved.rend() || outer->kind != kind) return false;
        while (saved.back().kind == Kind::Mask) close();
        return true;
    }

    void setSource(const NSColor& color) {
        const ColorComponents c = color.components();
        cairo_set_source_rgba(cairo, c.red, c.green, c.blue, c.alpha);
    }
    [[nodiscard]] bool turnsOrSkews() const {
        cairo_matrix_t matrix;
        cairo_get_matrix(cairo, &matrix);
        return matrix.xy != 0 || matrix.yx != 0;
    }
    [[nodiscard]] NSRect clipBounds() const {
        double left, top, right, bottom;
        cairo_clip_extents(cairo, &left, &top, &right, &bottom);
        return {left, top, right - left, bottom - top};
    }
    [[nodiscard]] NSRect toDevice(NSRect rect) const {
        double x = rect.origin.x, y = rect.origin.y, width = rect.size.width, height = rect.size.height;
        cairo_user_to_device(cairo, &x, &y);
        cairo_user_to_device_distance(cairo, &width, &height);
        return {std::min(x, x + width), std::min(y, y + height), std::abs(width), std::abs(height)};
    }
    void paintMask(const ShadowMask& mask) {
        if (mask.coverage.empty()) return;
        auto* bytes = const_cast<unsigned char*>(mask.coverage.data());
        cairo_surface_t* surface =
            cairo_image_surface_create_for_data(bytes, CAIRO_FORMAT_A8, mask.width, mask.height, mask.stride);
        cairo_mask_surface(cairo, surface, mask.x, mask.y);
        cairo_surface_destroy(surface);
    }
};

GraphicsContext::GraphicsContext(std::unique_ptr<Native> native) : native_(std::move(native)) {}

GraphicsContext::~GraphicsContext() = default;

std::shared_ptr<GraphicsContext> GraphicsContext::onBitmap(std::shared_ptr<NSBitmapImageRep> bitmap,
                                                           double scale) {
    if (!bitmap || !(scale > 0) || !std::isfinite(scale)) return nullptr;
    auto native = std::make_unique<Native>(std::move(bitmap), scale);
    return std::shared_ptr<GraphicsContext>(new GraphicsContext(std::move(native)));
}

GraphicsContext* GraphicsContext::current() noexcept {
    return threadContext;
}

GraphicsContext::Current::Current(GraphicsContext& context) noexcept : former_(threadContext) {
    threadContext = &context;
}

GraphicsContext::Current::~Current() {
    threadContext = former_;
}

cairo_t* cairoHandle(GraphicsContext& context) noexcept {
    return context.native().cairo;
}

double GraphicsContext::scale() const noexcept {
    return native_->scale;
}

NSRect GraphicsContext::clipBounds() const {
    return native_->clipBounds();
}

NSRect GraphicsContext::pixelAligned(NSRect rect) const {
    cairo_matrix_t at;
    cairo_get_matrix(native_->cairo, &at);
    if (at.xy != 0 || at.yx != 0) return rect;  // no edge of it could lie on pixels' edges
    const auto across = [&](double x) { return (std::round(x * at.xx + at.x0) - at.x0) / at.xx; };
    const auto down = [&](double y) { return (std::round(y * at.yy + at.y0) - at.y0) / at.yy; };
    const double left = across(rect.origin.x), top = down(rect.origin.y);
    return {left, top, across(rect.maxX()) - left, down(rect.maxY()) - top};
}

void GraphicsContext::clear(NSRect rect) {
    if (!isDrawable(rect)) return;
    const SavedState state(*this);
    cairo_set_operator(native_->cairo, CAIRO_OPERATOR_CLEAR);
    addRoundedRect(native_->cairo, withinReach(rect), 0);
    cairo_fill(native_->cairo);
}

void GraphicsContext::fill(NSRect rect, const NSColor& color) {
    fill(rect, 0, color);
}

void GraphicsContext::fill(NSRect rect, double cornerRadius, const NSColor& color) {
    if (!isDrawable(rect)) return;
    native_->setSource(color);
    addRoundedRect(native_->cairo, withinReach(rect), cornerRadius);
    cairo_fill(native_->cairo);
}

void GraphicsContext::stroke(NSRect rect, double cornerRadius, double width, const NSColor& color) {
    if (!isDrawable(rect) || !(width > 0)) return;
    const NSRect outer = withinReach(rect);
    const NSRect inner{outer.origin.x + width, outer.origin.y + width, outer.size.width - 2 * width,
                       outer.size.height - 2 * width};
    native_->setSource(color);
    addRoundedRect(native_->cairo, outer, cornerRadius);
    if (isDrawable(inner)) addRoundedRect(native_->cairo, inner, std::max(0.0, cornerRadius - width));
    cairo_set_fill_rule(native_->cairo, CAIRO_FILL_RULE_EVEN_ODD);
    cairo_fill(native_->cairo);
    cairo_set_fill_rule(native_->cairo, CAIRO_FILL_RULE_WINDING);
}

void GraphicsContext::strokeLine(NSPoint from, NSPoint to, double width, const NSColor& color) {
    const double sum = from.x + from.y + to.x + to.y + width;
    if (!(width > 0) || !std::isfinite(sum)) return;
    const NSPoint start = withinReach({from, {}}).origin;
    const NSPoint end = withinReach({to, {}}).origin;
    native_->setSource(color);
    cairo_set_line_width(native_->cairo, width);
    cairo_move_to(native_->cairo, start.x, start.y);
    cairo_line_to(native_->cairo, end.x, end.y);
    cairo_stroke(native_->cairo);
}

void GraphicsContext::drawShadow(NSRect rect, double cornerRadius, const Shadow& shadow) {
    if (!shadow.color || !isDrawable(rect)) return;
    rect.origin = {rect.origin.x + shadow.offset.x, rect.origin.y + shadow.offset.y};
    if (!isDrawable(rect)) return;
    const SavedState state(*this);
    native_->setSource(*shadow.color);
    // The mask is made in the bitmap's own pixels; where the coordinates are turned, in pixels of the turned
    // plane.
    const bool turned = native_->turnsOrSkews();
    const double scale = turned ? native_->scale : native_->toDevice({0, 0, 1, 1}).size.width;
    if (turned) {
        cairo_scale(native_->cairo, 1 / scale, 1 / scale);
        rect = {rect.origin.x * scale, rect.origin.y * scale, rect.size.width * scale,
                rect.size.height * scale};
    } else {
        rect = native_->toDevice(rect);
        cairo_identity_matrix(native_->cairo);
    }
    native_->paintMask(
        shadowMask(withinReach(rect), cornerRadius * scale, shadow.blurRadius * scale, clipBounds()));
}

void GraphicsContext::drawBitmap(const NSBitmapImageRep& bitmap, NSRect into, double opacity) {
    if (!isDrawable(into) || !(opacity > 0)) return;
    const SavedState state(*this);
    clip(into);
    cairo_pattern_t* pattern = patternOver(bitmap, into);
    cairo_set_source(native_->cairo, pattern);
    cairo_pattern_destroy(pattern);
    cairo_paint_with_alpha(native_->cairo, std::min(opacity, 1.0));
}

void GraphicsContext::drawText(const TextLayout& text, NSPoint topLeft, const NSColor& color) {
    if (!std::isfinite(topLeft.x + topLeft.y)) return;
    native_->setSource(color);
    LaidOutText::of(text)->draw(native_->cairo, withinReach({topLeft, {}}).origin);
}

void GraphicsContext::drawTextLine(const TextLayout& line, NSRect inside, const NSColor& color) {
    if (!isDrawable(inside)) return;
    const auto laidOut = LaidOutText::of(line);
    const TextMeasure& plain = laidOut->emptyLine(line.font());
    const double baseline =
        inside.origin.y + (inside.size.height - plain.size.height) / 2 + plain.firstBaseline;
    const double crisp = pixelAligned({0, baseline, 1, 1}).origin.y;
    const NSPoint topLeft{inside.origin.x, crisp - laidOut->measure().firstBaseline};
    native_->setSource(color);
    laidOut->draw(native_->cairo, withinReach({topLeft, {}}).origin);
}

bool GraphicsContext::isAsMade() const {
    return native_->saved.empty() && cairo_status(native_->cairo) == CAIRO_STATUS_SUCCESS;
}

bool GraphicsContext::draws(const std::shared_ptr<NSBitmapImageRep>& bitmap) const noexcept {
    return native_->bitmap == bitmap;
}

void GraphicsContext::saveState() {
    cairo_save(native_->cairo);
    native_->saved.push_back({Native::Kind::State});
}

void GraphicsContext::restoreState() {
    if (!native_->closeMasksInside(Native::Kind::State)) {
        return callerError("GraphicsContext: restoreState without its saveState");
    }
    native_->close();
}

void GraphicsContext::beginLayer() {
    cairo_save(native_->cairo);
    cairo_push_group(native_->cairo);
    native_->saved.push_back({Native::Kind::Layer});
}

void GraphicsContext::endLayer(double opacity) {
    if (!native_->closeMasksInside(Native::Kind::Layer)) {
        return callerError("GraphicsContext: endLayer without its beginLayer");
    }
    native_->putLayer(std::clamp(opacity, 0.0, 1.0));
    cairo_restore(native_->cairo);
    native_->saved.pop_back();
}

void GraphicsContext::translate(double x, double y) {
    if (std::isfinite(x) && std::isfinite(y)) cairo_translate(native_->cairo, x, y);
}

void GraphicsContext::scaleBy(double x, double y) {
    if (!std::isfinite(x) || !std::isfinite(y)) return;
    if (x == 0 || y == 0) return clip({});  // a plane without extent shows nothing
    cairo_scale(native_->cairo, x, y);
}

void GraphicsContext::rotate(double radians) {
    if (std::isfinite(radians)) cairo_rotate(native_->cairo, radians);
}

void GraphicsContext::clip(NSRect rect, double cornerRadius) {
    const NSRect held = isDrawable(rect) ? withinReach(rect) : NSRect{};
    addRoundedRect(native_->cairo, held, cornerRadius);
    cairo_clip(native_->cairo);
}

void GraphicsContext::clipToMask(NSRect rect, std::shared_ptr<const NSBitmapImageRep> mask) {
    if (!mask) return;
    if (!isDrawable(rect)) return clip({});
    cairo_save(native_->cairo);
    clip(rect);
    cairo_pattern_t* pattern = patternOver(*mask, rect);
    native_->saved.push_back({Native::Kind::Mask, std::move(mask), pattern});
    cairo_push_group(native_->cairo);
}

}  // namespace kx
