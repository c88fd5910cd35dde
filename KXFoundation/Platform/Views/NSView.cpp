// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Views/CALayer.h>
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
    if (!NSView::init(coder.decodeRect("frame").value_or(NSRect()))) return false;
    setWantsLayer(coder.decodeBoolean("wantsLayer").value_or(false));
    return true;
}

void NSView::encodeWithCoder(NSCoder& coder) const {
    coder.encode("frame", frame_);
    coder.encode("wantsLayer", wantsLayer());
}

bool NSView::allowsChange() const {
    if (NSApplication::isMainThread()) return true;
    callerError(className() + ": changed on another thread than the main one");
    return false;
}

// Place

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
        if (!(*view)->isSeen()) continue;  // whatever a subclass's test answers
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

void NSView::setWantsLayer(bool wants) {
    if (wants == wantsLayer() || !allowsChange()) return;
    redrawAround([&] {
        if (layer_) layer_->view_ = nullptr;
        layer_ = wants ? make<CALayer>() : nullptr;
        if (layer_) layer_->view_ = this;
    });
}

double NSView::shownAlpha() const noexcept {
    return layer_ ? layer_->presentation_.opacity.value_or(alpha_) : alpha_;
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
    directionDidChange();
    setNeedsLayout();
}

// Drawing

void NSView::drawRect(GraphicsContext&, NSRect) {}

void NSView::setNeedsDisplay(NSRect rect) {
    if (allowsChange()) invalidate(rect.intersection(bounds()));
}

/// Where the view itself can leave marks, in its own coordinates.
NSRect NSView::ownExtent() const {
    return layer_ ? bounds().unionWith(layer_->shadowExtent()) : bounds();
}

/// Where the view and everything in it can leave marks, in its own coordinates.
NSRect NSView::drawnExtent() const {
    NSRect extent = ownExtent();
    if (clips_) return extent;
    for (const auto& view : subviews_) {
        if (view->isDrawn()) extent = extent.unionWith(view->placedInSuperview(view->drawnExtent()));
    }
    return extent;
}

/// From the view's coordinates to the superview's, as it is shown at the moment.
NSRect NSView::placedInSuperview(NSRect rect) const {
    if (layer_ && layer_->presentation_.moves()) rect = layer_->presentation_.moved(rect, frame_.size);
    return rect.movedBy(frame_.origin);
}

/// Hands the rectangle up to the window, cut where something on the way hides it.
void NSView::invalidate(NSRect rect) {
    for (NSView* view = this; view->isDrawn() && !rect.isEmpty(); view = view->superview_) {
        rect = view->placedInSuperview(rect);
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
