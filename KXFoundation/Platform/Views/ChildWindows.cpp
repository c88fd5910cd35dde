// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

/// Windows inside a window. They share its surface, so they need none, and nothing that an application does
/// with them can come apart on the screen.
namespace kx {

std::shared_ptr<NSWindow> NSWindow::parentWindow() const {
    return parent_ ? std::static_pointer_cast<NSWindow>(parent_->weak_from_this().lock()) : nullptr;
}

/// Whether it is that window or one of its child windows, at whatever depth.
bool NSWindow::isInside(const NSWindow& other) const noexcept {
    const NSWindow* window = this;
    while (window && window != &other) window = window->parent_;
    return window != nullptr;
}

void NSWindow::addChildWindow(const std::shared_ptr<NSWindow>& given, NSWindowOrderingMode ordered) {
    if (!given) return;
    const auto child = given;  // the argument may live in a list that changes now
    const auto held = self();
    if (isInside(*child)) return callerError(className() + ": a window cannot be put into itself");
    if (child->isVisible() || child->isMiniaturized() || child->parent_) child->orderOut();
    if (child->parent_ || isInside(*child)) return;  // a hook has put it elsewhere, or this one into it
    const bool isAbove = ordered == NSWindowOrderingMode::Above;
    childWindows_.insert(isAbove ? childWindows_.end() : childWindows_.begin(), child);
    child->parent_ = this;
    child->originInParent_ = {child->frame_.origin.x - frame_.origin.x,
                              child->frame_.origin.y - frame_.origin.y};
    child->fitToParent();
    child->didShowOrHide();
}

void NSWindow::removeChildWindow(const std::shared_ptr<NSWindow>& given) {
    const auto child = given;
    if (child) child->detach();
}

void NSWindow::detach() {
    if (!parent_) return;
    const auto held = self();
    setNeedsDisplay(bounds());
    auto& siblings = std::exchange(parent_, nullptr)->childWindows_;
    std::erase(siblings, held);
    mouseTarget_.reset();
    touched_.clear();
    didShowOrHide();
}

/// Takes the parent's frame or, with one of its own, stays where it is in the parent.
void NSWindow::fitToParent() {
    const NSRect& outer = parent_->frame_;
    if (!hasOwnFrame_) {
        frame_ = outer;
        originInParent_ = {};
    } else {
        frame_.origin = {outer.origin.x + originInParent_.x, outer.origin.y + originInParent_.y};
    }
    fitContentView();
}

/// Draws the one point aside to see whether that leaves a mark.
bool NSWindow::isDrawnAt(NSPoint point) {
    const auto pixel = NSBitmapImageRep::bitmapWithPixels(1, 1);
    const auto context = GraphicsContext::onBitmap(pixel);
    if (!context) return false;
    const NSRect dirty(std::floor(point.x), std::floor(point.y), 1, 1);
    const ScopedAppearance look(appearance_);
    const GraphicsContext::Current current(*context);
    context->translate(-dirty.origin.x, -dirty.origin.y);
    drawTree(*context, dirty);
    return pixel->pixelAt(0, 0) >> 24 != 0;
}

/// The foremost child window that shows something at the point.
std::shared_ptr<NSWindow> NSWindow::childAt(NSPoint point) {
    const auto children = childWindows_;
    for (auto child = children.rbegin(); child != children.rend(); ++child) {
        const NSPoint origin = (*child)->originInParent_;
        const NSPoint inside{point.x - origin.x, point.y - origin.y};
        if ((*child)->bounds().contains(inside) && (*child)->isDrawnAt(inside)) return *child;
    }
    return nullptr;
}

/// True if a mouse event is a child window's: one over it or, after a mouse down there, wherever it is.
bool NSWindow::sendToChild(const NSEvent& event) {
    using enum NSEventType;
    if (event.type == KeyDown || event.type == KeyUp) return false;
    const bool follows = event.type == MouseDragged || event.type == MouseUp;
    if (!follows && childWindows_.empty()) {
        mouseChild_.reset();
        return false;
    }
    const auto child = follows ? mouseChild_.lock() : childAt(event.locationInWindow);
    if (event.type == MouseDown) {
        mouseChild_ = child;
        mouseTarget_.reset();
        touched_.clear();
    }
    if (event.type == MouseUp) mouseChild_.reset();
    if (!child) return false;
    if (child->parent_ != this) return true;  // it has gone meanwhile, and the rest of the click with it
    NSEvent inside = event;
    inside.locationInWindow.x -= child->originInParent_.x;
    inside.locationInWindow.y -= child->originInParent_.y;
    child->sendEvent(inside);
    return true;
}

}  // namespace kx
