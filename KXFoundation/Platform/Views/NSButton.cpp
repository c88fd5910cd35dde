// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSEvent.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/Platform/Views/ViewOperations.h>

/// What a button does; ButtonDrawing.cpp holds its look.
namespace kx {

void NSButton::defineOperations(Class& cls) {
    initWithFrameOperation.implement<&NSButton::initializeWithFrame>(cls);
    initWithCoderOperation.implement<&NSButton::initializeWithCoder>(cls);
    hitTestOperation.implement<&NSButton::hitTestPlainly>(cls);
}

bool NSButton::init(NSRect frame) {
    return initWithFrameOperation(*this, frame);
}
bool NSButton::init(NSCoder& coder) {
    return initWithCoderOperation(*this, coder);
}
std::shared_ptr<NSView> NSButton::hitTest(NSPoint point) {
    return hitTestOperation(*this, point);
}
std::shared_ptr<NSView> NSButton::hitTestPlainly(NSPoint point) {
    return Super::hitTest(point);
}

bool NSButton::initializeWithFrame(NSRect frame) {
    NSControl::setAlignment(NSTextAlignment::Center);
    return Super::init(frame);
}

bool NSButton::initializeWithCoder(NSCoder& coder) {
    NSControl::setAlignment(NSTextAlignment::Center);
    if (!Super::init(coder)) return false;
    title_ = coder.decodeString("title").value_or("");
    return true;
}

void NSButton::encodeWithCoder(NSCoder& coder) const {
    Super::encodeWithCoder(coder);
    coder.encode("title", title_);
}

void NSButton::setTitle(std::optional<std::string_view> title) {
    change(title_, std::string(title.value_or("")));
}
void NSButton::setImage(std::shared_ptr<NSImage> image) {
    change(image_, std::move(image));
}
void NSButton::setDefaultButton(bool isDefault) {
    change(default_, isDefault);
}

void NSButton::performClick() {
    if (isEnabled()) sendAction();
}

bool NSButton::isUnder(const NSEvent& event) {
    if (!window() || isHidden() || alphaValue() <= 0) return false;
    const NSPoint inside = convertPointFromView(event.locationInWindow, nullptr);
    return hitTest({inside.x + frame().origin.x, inside.y + frame().origin.y}) != nullptr;
}

void NSButton::mouseDown(const NSEvent&) {
    tracking_ = isEnabled();
    setHighlighted(tracking_);
}

void NSButton::mouseDragged(const NSEvent& event) {
    if (tracking_) setHighlighted(isUnder(event));
}

void NSButton::mouseUp(const NSEvent& event) {
    if (!std::exchange(tracking_, false)) return;
    setHighlighted(false);
    if (isUnder(event)) performClick();
}

namespace {

bool pressesButtons(const NSEvent& event) {
    return (event.characters == " " || event.characters == "\r") && !isCommand(event);
}

}  // namespace

void NSButton::keyDown(const NSEvent& event) {
    if (!pressesButtons(event) || !isEnabled()) return Super::keyDown(event);
    if (event.isARepeat && !pressedByKey_) return;  // the key went down elsewhere
    pressedByKey_ = true;
    setHighlighted(true);
}

void NSButton::keyUp(const NSEvent& event) {
    if (!pressesButtons(event) || !std::exchange(pressedByKey_, false)) return Super::keyUp(event);
    setHighlighted(false);
    performClick();
}

/// What was pressed in one window is not let go in another.
void NSButton::viewWillMoveToWindow(const std::shared_ptr<NSWindow>& window) {
    tracking_ = pressedByKey_ = false;
    setHighlighted(false);
    Super::viewWillMoveToWindow(window);
}

bool NSButton::resignFirstResponder() {
    if (std::exchange(pressedByKey_, false)) setHighlighted(false);
    return Super::resignFirstResponder();
}

bool NSButton::performKeyEquivalent(const NSEvent& event) {
    if (!default_ || event.characters != "\r" || isCommand(event) || !isEnabled())
        return Super::performKeyEquivalent(event);
    if (!event.isARepeat) performClick();
    return true;
}

bool NSButton::showsFocus() const {
    const auto in = window();
    return in && in->showsFocus() && in->firstResponder().get() == this;
}

}  // namespace kx
