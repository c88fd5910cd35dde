// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Views/NSGestureRecognizer.h>
#include <KXFoundation/Platform/Views/NSView.h>

namespace kx {

NSGestureRecognizerDelegate::~NSGestureRecognizerDelegate() = default;

bool NSGestureRecognizerDelegate::gestureRecognizerShouldReceiveTouch(NSGestureRecognizer&, const NSTouch&) {
    return true;
}

std::shared_ptr<NSView> NSGestureRecognizer::view() const {
    return view_ ? std::static_pointer_cast<NSView>(view_->weak_from_this().lock()) : nullptr;
}

bool NSGestureRecognizer::accepts(const NSTouch& touch) {
    if (!enabled_) return false;
    const auto asked = delegate();
    return !asked || asked->gestureRecognizerShouldReceiveTouch(*this, touch);
}

void NSGestureRecognizer::callAction() {
    const auto held = self();
    const auto action = action_;  // it may set another one
    if (action) action();
}

void NSView::addGestureRecognizer(const std::shared_ptr<NSGestureRecognizer>& given) {
    if (!given || !allowsChange()) return;
    const auto recognizer = given;  // the argument may live in a list that changes now
    if (const auto former = recognizer->view()) former->removeGestureRecognizer(recognizer);
    recognizers_.push_back(recognizer);
    recognizer->view_ = this;
}

void NSView::removeGestureRecognizer(const std::shared_ptr<NSGestureRecognizer>& given) {
    if (!given || given->view_ != this || !allowsChange()) return;
    const auto recognizer = given;
    recognizer->view_ = nullptr;
    std::erase(recognizers_, recognizer);
}

}  // namespace kx
