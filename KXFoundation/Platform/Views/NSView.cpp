#include <algorithm>
#include <cmath>
#include <cstdio>

#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

/// Place, look and coordinates of a view; ViewTree.cpp holds what moves views about.
namespace kx {

namespace {

double finite(double value) {
    return std::isfinite(value) ? value : 0;
}

NSRect usable(NSRect rect) {
    return {finite(rect.origin.x), finite(rect.origin.y), std::max(0.0, finite(rect.size.width)),
            std::max(0.0, finite(rect.size.height))};
}

NSPoint operator+(NSPoint a, NSPoint b) {
    return {a.x + b.x, a.y + b.y};
}
NSPoint operator-(NSPoint a, NSPoint b) {
    return {a.x - b.x, a.y - b.y};
}

}  // namespace

bool NSView::init(NSRect frame) {
    frame_ = usable(frame);
    return Super::init();
}

bool NSView::init(NSCoder& coder) {
    return NSView::init(coder.decodeRect("frame").value_or(NSRect()));
}

void NSView::encodeWithCoder(NSCoder& coder) const {
    coder.encode("frame", frame_);
}

bool NSView::allowsChange() const {
    if (NSApplication::isMainThread()) return true;
    callerError(className() + ": changed on another thread than the main one");
    return false;
}

// Place

template <class Change>
void NSView::redrawAround(Change change) {
    invalidate(drawnExtent());
    change();
    invalidate(drawnExtent());
}

void NSView::setFrame(NSRect frame) {
    frame = usable(frame);
    if (frame == frame_ || !allowsChange()) return;
    const bool resized = frame.size != frame_.size;
    redrawAround([&] { frame_ = frame; });
    if (resized) setNeedsLayout();
}

NSSize NSView::intrinsicContentSize() const {
    return {kNoIntrinsicMetric, kNoIntrinsicMetric};
}

NSSize NSView::fittingSize() const {
    const NSSize asked = intrinsicContentSize();
    return {asked.width < 0 ? frame_.size.width : asked.width,
            asked.height < 0 ? frame_.size.height : asked.height};
}

void NSView::sizeToFit() {
    setFrame({frame_.origin, fittingSize()});
}

// Coordinates

std::shared_ptr<NSView> NSView::hitTest(NSPoint point) {
    if (!isSeen() || !frame_.contains(point)) return nullptr;
    const NSPoint inside = point - frame_.origin;
    const auto candidates = subviews_;  // a subclass's test may change the tree
    for (auto view = candidates.rbegin(); view != candidates.rend(); ++view) {
        if (auto hit = (*view)->hitTest(inside)) return hit;
    }
    return self();
}

NSPoint NSView::originInWindow() const noexcept {
    NSPoint origin;
    for (const NSView* view = this; view; view = view->superview_) origin = origin + view->frame_.origin;
    return origin;
}

NSPoint NSView::convertPointToView(NSPoint point, const NSView* view) const noexcept {
    return point + originInWindow() - (view ? view->originInWindow() : NSPoint());
}

NSPoint NSView::convertPointFromView(NSPoint point, const NSView* view) const noexcept {
    return point + (view ? view->originInWindow() : NSPoint()) - originInWindow();
}

NSRect NSView::convertRectToView(NSRect rect, const NSView* view) const noexcept {
    return {convertPointToView(rect.origin, view), rect.size};
}

// Look

void NSView::setHidden(bool hidden) {
    if (hidden == hidden_ || !allowsChange()) return;
    redrawAround([&] { hidden_ = hidden; });
    didShowOrHide();
}

bool NSView::isShown() const {
    const NSView* view = this;
    while (!view->hidden_ && view->superview_) view = view->superview_;
    return !view->hidden_ && view->window_ && view->window_->isVisible();
}

void NSView::setAlphaValue(double alpha) {
    alpha = std::clamp(finite(alpha), 0.0, 1.0);
    if (alpha == alpha_ || !allowsChange()) return;
    redrawAround([&] { alpha_ = alpha; });
}

void NSView::setClipsToBounds(bool clips) {
    if (clips == clips_ || !allowsChange()) return;
    redrawAround([&] { clips_ = clips; });
}

NSUserInterfaceLayoutDirection NSView::userInterfaceLayoutDirection() const noexcept {
    for (const NSView* view = this; view; view = view->superview_) {
        if (view->direction_) return *view->direction_;
    }
    return NSUserInterfaceLayoutDirection::LeftToRight;
}

void NSView::setUserInterfaceLayoutDirection(std::optional<NSUserInterfaceLayoutDirection> direction) {
    if (direction == direction_ || !allowsChange()) return;
    direction_ = direction;
    invalidate(drawnExtent());  // the subviews follow
    setNeedsLayout();
}

// Drawing

void NSView::drawRect(GraphicsContext&, NSRect) {}

void NSView::setNeedsDisplay(NSRect rect) {
    if (allowsChange()) invalidate(rect.intersection(bounds()));
}

/// Where the view and everything in it can leave marks, in its own coordinates.
NSRect NSView::drawnExtent() const {
    NSRect extent = bounds();
    if (clips_) return extent;
    for (const auto& view : subviews_) {
        if (view->isSeen()) extent = extent.unionWith(view->drawnExtent().movedBy(view->frame_.origin));
    }
    return extent;
}

/// Hands the rectangle up to the window, cut where something on the way hides it.
void NSView::invalidate(NSRect rect) {
    for (NSView* view = this; view->isSeen() && !rect.isEmpty(); view = view->superview_) {
        rect = rect.movedBy(view->frame_.origin);
        if (!view->superview_) {
            if (view->window_) view->window_->setNeedsDisplay(rect);
            return;
        }
        if (view->superview_->clips_) rect = rect.intersection(view->superview_->bounds());
    }
}

std::string NSView::description() const {
    char place[128];
    std::snprintf(place, sizeof place, " %g,%g %gx%g", frame_.origin.x, frame_.origin.y, frame_.size.width,
                  frame_.size.height);
    return "<" + className() + place + (hidden_ ? " hidden>" : ">");
}

}  // namespace kx
