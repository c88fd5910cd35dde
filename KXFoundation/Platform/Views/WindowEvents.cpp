#include <KXFoundation/Platform/Views/NSGestureRecognizer.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

/// Who gets a window's events: the child window under the mouse, else the view there and the recognisers that
/// watch it. Whoever is called may remove views and close windows.
namespace kx {

namespace {

/// The recognisers of the view and of those that hold it. One that takes the keys takes the mouse too.
std::vector<std::shared_ptr<NSGestureRecognizer>> recognizersAbove(std::shared_ptr<NSView> view) {
    std::vector<std::shared_ptr<NSGestureRecognizer>> found;
    for (; view; view = view->superview()) {
        found.insert(found.end(), view->gestureRecognizers().begin(), view->gestureRecognizers().end());
        if (view->acceptsFirstResponder()) break;
    }
    return found;
}

NSTouch touchOf(const std::shared_ptr<NSView>& view, const NSEvent& event) {
    return {NSTouch::Type::Mouse, event.locationInWindow, view, event.clickCount};
}

}  // namespace

void NSWindow::sendEvent(const NSEvent& event) {
    const auto held = self();
    if (sendToChild(event)) return;
    switch (event.type) {
        case NSEventType::MouseDown:
            if (const auto view = viewFor(event)) {
                beginTouch(view, event);
                view->mouseDown(event);
            }
            return;
        case NSEventType::MouseDragged:
            if (const auto view = mouseTarget_.lock()) view->mouseDragged(event);
            return;
        case NSEventType::MouseUp:
            if (const auto view = mouseTarget_.lock()) {
                mouseTarget_.reset();
                view->mouseUp(event);
            }
            return endTouch(event);
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
    if (view && !parent_ && view->acceptsFirstResponder()) makeFirstResponder(view);
    return view;
}

void NSWindow::beginTouch(const std::shared_ptr<NSView>& view, const NSEvent& event) {
    touched_.clear();
    const NSTouch touch = touchOf(view, event);
    for (const auto& recognizer : recognizersAbove(view)) {
        if (!recognizer->accepts(touch)) continue;
        touched_.push_back(recognizer);
        recognizer->touchDidBegin(touch);
    }
}

/// For the recognisers whose view is still here.
void NSWindow::endTouch(const NSEvent& event) {
    const auto touched = std::exchange(touched_, {});
    if (touched.empty()) return;
    const auto content = contentView_;
    const NSTouch touch = touchOf(content ? content->hitTest(event.locationInWindow) : nullptr, event);
    for (const auto& weak : touched) {
        const auto recognizer = weak.lock();
        const auto view = recognizer ? recognizer->view() : nullptr;
        if (view && view->window().get() == this && recognizer->isEnabled()) recognizer->touchDidEnd(touch);
    }
}

}  // namespace kx
