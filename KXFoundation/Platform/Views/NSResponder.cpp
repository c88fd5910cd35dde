// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/NSEvent.h>
#include <KXFoundation/Platform/Views/NSResponder.h>

namespace kx {

void NSResponder::passOn(void (NSResponder::*handler)(const NSEvent&), const NSEvent& event) {
    if (const auto next = nextResponder()) ((*next).*handler)(event);
}

void NSResponder::mouseDown(const NSEvent& event) {
    passOn(&NSResponder::mouseDown, event);
}
void NSResponder::mouseDragged(const NSEvent& event) {
    passOn(&NSResponder::mouseDragged, event);
}
void NSResponder::mouseUp(const NSEvent& event) {
    passOn(&NSResponder::mouseUp, event);
}
void NSResponder::mouseMoved(const NSEvent& event) {
    passOn(&NSResponder::mouseMoved, event);
}
void NSResponder::rightMouseDown(const NSEvent& event) {
    passOn(&NSResponder::rightMouseDown, event);
}
void NSResponder::rightMouseUp(const NSEvent& event) {
    passOn(&NSResponder::rightMouseUp, event);
}
void NSResponder::otherMouseDown(const NSEvent& event) {
    passOn(&NSResponder::otherMouseDown, event);
}
void NSResponder::otherMouseUp(const NSEvent& event) {
    passOn(&NSResponder::otherMouseUp, event);
}
void NSResponder::scrollWheel(const NSEvent& event) {
    passOn(&NSResponder::scrollWheel, event);
}
void NSResponder::keyDown(const NSEvent& event) {
    passOn(&NSResponder::keyDown, event);
}
void NSResponder::keyUp(const NSEvent& event) {
    passOn(&NSResponder::keyUp, event);
}

}  // namespace kx
