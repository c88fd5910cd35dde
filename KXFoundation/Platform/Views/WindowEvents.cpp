// SPDX-License-Identifier: MIT

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
            return sendUnder(&NSResponder::mouseMoved, event);
        case NSEventType::RightMouseDown:
            return sendUnder(&NSResponder::rightMouseDown, event);
        case NSEventType::RightMouseUp:
            return sendUnder(&NSResponder::rightMouseUp, event);
        case NSEventType::OtherMouseDown:
            return sendUnder(&NSResponder::otherMouseDown, event);
        case NSEventType::OtherMouseUp:
            return sendUnder(&NSResponder::otherMouseUp, event);
        case NSEventType::ScrollWheel:
            return sendUnder(&NSResponder::scrollWheel, event);
        case NSEventType::KeyDown:
            return sendKey(&NSResponder::keyDown, event);
        case NSEventType::KeyUp:
            return sendKey(&NSResponder::keyUp, event);
    }
}

std::shared_ptr<NSView> NSWindow::viewAt(NSPoint point) const {
    const auto content = contentView_;  // a subclass's test may take it out
    return content ? content->hitTest(point) : nullptr;
}

void NSWindow::sendUnder(void (NSResponder::*handler)(const NSEvent&), const NSEvent& event) {
    if (const auto view = viewAt(event.locationInWindow)) ((*view).*handler)(event);
}

/// The view under a mouse down, which from now on has the mouse and, if it wants them, the keys.
std::shared_ptr<NSView> NSWindow::viewFor(const NSEvent& event) {
    auto view = viewAt(event.locationInWindow);
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
    const NSTouch touch = touchOf(viewAt(event.locationInWindow), event);
    for (const auto& weak : touched) {
        const auto recognizer = weak.lock();
        const auto view = recognizer ? recognizer->view() : nullptr;
        if (view && view->window().get() == this && recognizer->isEnabled()) recognizer->touchDidEnd(touch);
    }
}

}  // namespace kx
