#include <algorithm>
#include <cmath>
#include <cstdio>

#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

/// A window's place, screen life and events; WindowDrawing.cpp holds its pixels.
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

bool NSWindow::init(NSRect frame) {
    frame_ = usable(frame);
    setContentView(make<NSView>());
    return Super::init();
}

NSWindow::~NSWindow() {
    if (contentView_) contentView_->window_ = nullptr;
}

void NSWindow::setFrame(NSRect frame) {
    frame_ = usable(frame);
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
    if (view == contentView_ || (view && view->moving_)) return;
    if (const auto former = contentView_) former->removeFromSuperview();
    if (!view || contentView_) return;
    view->attachToWindow(*this);
    fitContentView();
}

void NSWindow::fitContentView() {
    if (contentView_) contentView_->setFrame(bounds());
    setNeedsDisplay(bounds());
}

// On the screen

void NSWindow::orderFront() {
    const auto application = NSApplication::sharedApplication();
    if (!surface_) openSurface();
    const bool isNews = !isVisible();
    application->bringToFront(self());
    if (const auto content = contentView_; content && isNews) content->didShowOrHide();
}

void NSWindow::makeKeyAndOrderFront() {
    orderFront();
    NSApplication::sharedApplication()->makeKey(self());
    if (surface_) surface_->activate();
}

void NSWindow::orderOut() {
    const auto held = self();
    surface_ = nullptr;
    backing_ = nullptr;
    NSApplication::sharedApplication()->takeAway(*this);
    if (const auto content = contentView_) content->didShowOrHide();
}

bool NSWindow::isVisible() const {
    return NSApplication::sharedApplication()->shows(*this);
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
}

void NSWindow::surfaceDid(const SurfaceEvent& event) {
    std::visit(Overloaded{
                   [&](const NSEvent& input) { sendEvent(input); },
                   [&](SurfaceResized) { takeSizeFromSurface(); },
                   [&](SurfaceExposed) { setNeedsDisplay(bounds()); },
                   [&](SurfaceCloseRequested) { close(); },
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

// Events

void NSWindow::sendEvent(const NSEvent& event) {
    const auto held = self();
    switch (event.type) {
        case NSEventType::MouseDown:
            if (const auto view = viewFor(event)) view->mouseDown(event);
            return;
        case NSEventType::MouseDragged:
            if (const auto view = mouseTarget_.lock()) view->mouseDragged(event);
            return;
        case NSEventType::MouseUp:
            if (const auto view = mouseTarget_.lock()) {
                mouseTarget_.reset();
                view->mouseUp(event);
            }
            return;
        case NSEventType::MouseMoved:
            if (contentView_) {
                if (const auto view = contentView_->hitTest(event.locationInWindow)) view->mouseMoved(event);
            }
            return;
        case NSEventType::KeyDown:
            return sendKey(&NSResponder::keyDown, event);
        case NSEventType::KeyUp:
            return sendKey(&NSResponder::keyUp, event);
    }
}

/// The view under a mouse down, which from now on has the mouse and, if it wants them, the keys.
std::shared_ptr<NSView> NSWindow::viewFor(const NSEvent& event) {
    const auto content = contentView_;
    auto view = content ? content->hitTest(event.locationInWindow) : nullptr;
    mouseTarget_ = view;
    showFocus(false);
    if (view && view->acceptsFirstResponder()) makeFirstResponder(view);
    return view;
}

std::string NSWindow::description() const {
    char size[64];
    std::snprintf(size, sizeof size, " %gx%g>", frame_.size.width, frame_.size.height);
    return "<" + className() + " \"" + title_ + "\"" + size;
}

}  // namespace kx
