// SPDX-License-Identifier: MIT

#include <cmath>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/Platform/Views/ViewDrawing.h>

/// The window keeps all its pixels and draws the invalid ones among them again. The clip lies on pixel edges,
/// so that the outcome is the same as if everything had been drawn.
namespace kx {

double NSWindow::backingScaleFactor() const {
    if (parent_) return parent_->backingScaleFactor();
    return surface_ ? surface_->scale() : 1;
}

void NSWindow::setNeedsDisplay(NSRect rect) {
    if (parent_) return parent_->setNeedsDisplay(rect.intersection(bounds()).movedBy(originInParent_));
    const bool wasEmpty = invalid_.isEmpty();
    invalid_.add(rect.intersection(bounds()));
    if (wasEmpty && !invalid_.isEmpty()) wakeLoop();
}

void NSWindow::wakeLoop() const {
    if (parent_) return parent_->wakeLoop();
    if (surface_) NSApplication::sharedApplication()->wakeLoop();
}

void NSWindow::setAppearance(NSAppearance appearance) {
    if (appearance == appearance_) return;
    appearance_ = appearance;
    setNeedsDisplay(bounds());
}

void NSWindow::displayIfNeeded() {
    if (const auto parent = parentWindow()) return parent->displayIfNeeded();
    if (!surface_ || miniaturized_) return;
    const auto held = self();
    const auto surface = surface_;  // drawing may close the window
    layoutIfNeeded();
    if (invalid_.isEmpty() || !prepareBacking()) return;
    const auto backing = backing_;
    const std::vector<PixelRect> changed =
        invalid_.pixels(surface->scale(), backing->pixelsWide(), backing->pixelsHigh());
    invalid_.clear();
    for (const PixelRect& rect : changed) redraw(rect);
    surface->present(*backing, changed);
}

void NSWindow::layoutIfNeeded() {
    if (const auto content = contentView_) content->layoutSubtreeIfNeeded();
    if (childWindows_.empty()) return;
    const auto children = childWindows_;  // layout may run application code that changes the list
    for (const auto& child : children) child->layoutIfNeeded();
}

/// Pixels of the surface's size; false if there can be none.
bool NSWindow::prepareBacking() {
    const double scale = surface_->scale();
    const auto pixels = [&](double points) {
        return static_cast<std::uint32_t>(std::lround(points * scale));
    };
    const std::uint32_t wide = pixels(frame_.size.width);
    const std::uint32_t high = pixels(frame_.size.height);
    if (backing_ && backing_->pixelsWide() == wide && backing_->pixelsHigh() == high) return true;
    context_ = nullptr;
    backing_ = surface_->lentPixels(wide, high);
    if (!backing_) backing_ = NSBitmapImageRep::bitmapWithPixels(wide, high);
    setNeedsDisplay(bounds());
    return backing_ != nullptr;
}

void NSWindow::redraw(const PixelRect& pixels) {
    if (!backing_ || !surface_) return;
    const double scale = surface_->scale();
    auto context = std::exchange(context_, nullptr);  // drawing may draw the window anew
    if (!context || context->scale() != scale) context = GraphicsContext::onBitmap(backing_, scale);
    if (!context) return;
    const NSRect dirty(pixels.x / scale, pixels.y / scale, pixels.width / scale, pixels.height / scale);
    const ScopedAppearance look(appearance_);
    const GraphicsContext::Current current(*context);
    context->saveState();
    const bool isWhole = pixels.width == backing_->pixelsWide() && pixels.height == backing_->pixelsHigh();
    if (!isWhole) context->clip(context->pixelAligned(dirty));
    context->fill(dirty, *NSColor::windowBackgroundColor());
    drawTree(*context, dirty);
    context->restoreState();
    if (context->isAsMade() && context->draws(backing_)) context_ = std::move(context);
}

/// The content, and over it the child windows.
void NSWindow::drawTree(GraphicsContext& context, NSRect dirty) {
    if (const auto content = contentView_) ViewDrawing(context).draw(*content, dirty);
    if (childWindows_.empty()) return;
    const auto children = childWindows_;  // drawing may run application code that changes the list
    for (const auto& child : children) child->drawOnParent(context, dirty);
}

void NSWindow::drawOnParent(GraphicsContext& context, NSRect dirty) {
    dirty = dirty.movedBy({-originInParent_.x, -originInParent_.y}).intersection(bounds());
    if (dirty.isEmpty()) return;
    const GraphicsContext::SavedState state(context);
    context.translate(originInParent_.x, originInParent_.y);
    context.clip(context.pixelAligned(bounds()));
    drawTree(context, dirty);
}

}  // namespace kx
