// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>
#include <cstdio>

#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSViewController.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

/// A window's place and screen life. WindowEvents.cpp holds its events, WindowDrawing.cpp its pixels,
/// ChildWindows.cpp the windows inside it.
namespace kx {

namespace {

template <class... F>
struct Overloaded : F... {
    using F::operator()...;
};
template <class... F>
Overloaded(F...) -> Overloaded<F...>;

constexpr double kLongestSide = 16'384;

double usableSide(double side) {
    return side >= 1 ? std::min(side, kLongestSide) : 1;
}

NSRect usable(NSRect frame) {
    const auto place = [](double at) { return std::isfinite(at) ? std::clamp(at, -1e6, 1e6) : 0.0; };
    return {place(frame.origin.x), place(frame.origin.y), usableSide(frame.size.width),
            usableSide(frame.size.height)};
}

}  // namespace

bool NSWindow::init() {
    setContentView(make<NSView>());
    return Super::init();
}

bool NSWindow::init(NSRect frame) {
    frame_ = usable(frame);
    hasOwnFrame_ = true;
    return NSWindow::init();
}

NSWindow::~NSWindow() {
    if (contentView_) contentView_->window_ = nullptr;
    for (const auto& child : childWindows_) child->parent_ = nullptr;
}

void NSWindow::setFrame(NSRect frame) {
    if (parent_) setNeedsDisplay(bounds());  // the parent shows what was under it
    frame_ = usable(frame);
    hasOwnFrame_ = true;
    if (parent_)
        originInParent_ = {frame_.origin.x - parent_->frame_.origin.x,
                           frame_.origin.y - parent_->frame_.origin.y};
    if (const auto surface = surface_) {
        surface->setFrame(frame_);
        takeSizeFromSurface();  // it may have taken another one
    }
    fitContentView();
}

void NSWindow::setTitle(std::string_view title) {
    title_ = title;
    if (surface_) surface_->setTitle(title_);
}

void NSWindow::setContentView(const std::shared_ptr<NSView>& given) {
    const auto view = given;
    const auto held = self();
    if (view == contentView_ || (view && view->moving_)) return;
    if (const auto former = contentView_) former->removeFromSuperview();
    if (!view || contentView_) return;
    view->attachToWindow(*this);
    fitContentView();
}

void NSWindow::fitContentView() {
    if (contentView_) contentView_->setFrame(bounds());
    for (const auto& child : childWindows_) child->fitToParent();
    setNeedsDisplay(bounds());
}

void NSWindow::setContentViewController(std::shared_ptr<NSViewController> controller) {
    const auto held = self();
    contentViewController_ = controller;
    const auto shown = std::move(controller);  // making its view may replace it here
    if (shown) setContentView(shown->view());
}

// On the screen

void NSWindow::orderFront() {
    if (const auto parent = parentWindow())
        return parent->addChildWindow(self(), NSWindowOrderingMode::Above);
    if (!surface_) openSurface();
    const bool isNews = !isVisible();
    NSApplication::sharedApplication()->bringToFront(self());
    if (isNews) didShowOrHide();
}

/// The window, or the one that it is inside of, came to the screen or left it.
void NSWindow::didShowOrHide() {
    const auto held = self();
    if (const auto content = contentView_) content->didShowOrHide();
    const auto children = childWindows_;
    for (const auto& child : children) child->didShowOrHide();
}

void NSWindow::setMiniaturized(bool miniaturized) {
    if (miniaturized == miniaturized_) return;
    miniaturized_ = miniaturized;
    if (!miniaturized) {
        setNeedsDisplay(bounds());
        wakeLoop();  // also for what was asked for meanwhile
    }
    didShowOrHide();
}

void NSWindow::makeKeyAndOrderFront() {
    const auto held = self();
    orderFront();
    if (parent_) return;
    NSApplication::sharedApplication()->makeKey(held);
    if (surface_) surface_->activate();
}

void NSWindow::orderOut() {
    const auto held = self();
    if (parent_) return detach();
    surface_ = nullptr;
    backing_ = nullptr;
    miniaturized_ = false;
    context_ = nullptr;
    NSApplication::sharedApplication()->takeAway(*this);
    didShowOrHide();
}

bool NSWindow::isVisible() const {
    if (parent_) return parent_->isVisible();
    return !miniaturized_ && NSApplication::sharedApplication()->shows(*this);
}
bool NSWindow::isKeyWindow() const {
    return NSApplication::sharedApplication()->keyWindow().get() == this;
}
bool NSWindow::isMainWindow() const {
    return NSApplication::sharedApplication()->mainWindow().get() == this;
}

void NSWindow::openSurface() {
    const std::weak_ptr<NSWindow> weak = self();
    surface_ = WindowSystem::slot().current().makeSurface(frame_, [weak](const SurfaceEvent& event) {
        if (const auto window = weak.lock()) window->surfaceDid(event);
    });
    if (!surface_) return;
    surface_->setTitle(title_);
    takeSizeFromSurface();
    wakeLoop();  // for what was asked for before there was a surface
}

void NSWindow::surfaceDid(const SurfaceEvent& event) {
    std::visit(Overloaded{
                   [&](const NSEvent& input) { sendEvent(input); },
                   [&](SurfaceResized) { takeSizeFromSurface(); },
                   [&](SurfaceExposed) { setNeedsDisplay(bounds()); },
                   [&](SurfaceCloseRequested) { close(); },
                   [&](SurfaceMiniaturized change) { setMiniaturized(change.miniaturized); },
                   [&](SurfaceFocusChanged change) {
                       NSApplication::sharedApplication()->focusChanged(self(), change.focused);
                   },
               },
               event);
}

void NSWindow::takeSizeFromSurface() {
    if (!surface_) return;
    frame_ = usable({frame_.origin, surface_->size()});
    fitContentView();
}

std::string NSWindow::description() const {
    char size[64];
    std::snprintf(size, sizeof size, " %gx%g>", frame_.size.width, frame_.size.height);
    return "<" + className() + " \"" + title_ + "\"" + size;
}

}  // namespace kx
