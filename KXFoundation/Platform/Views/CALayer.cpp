// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Views/CABasicAnimation.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/Platform/Views/NSView.h>

namespace kx {

namespace {

double length(double value) {
    return std::isfinite(value) ? std::max(0.0, value) : 0;
}

std::chrono::nanoseconds now() {
    return Clock::slot().current().now();
}

}  // namespace

bool CALayer::init() {
    shadowColor_ = NSColor::blackColor();
    return Super::init();
}

CALayer::~CALayer() = default;

// Look

template <class Change>
void CALayer::redrawAround(Change change) {
    if (!view_) return change();
    if (view_->allowsChange()) view_->redrawAround(change);
}

template <class T>
void CALayer::change(T& property, T value) {
    if (property == value) return;
    redrawAround([&] { property = std::move(value); });
}

void CALayer::setBackgroundColor(std::shared_ptr<NSColor> color) {
    change(background_, std::move(color));
}
void CALayer::setCornerRadius(double radius) {
    change(cornerRadius_, length(radius));
}
void CALayer::setShadowColor(std::shared_ptr<NSColor> color) {
    change(shadowColor_, std::move(color));
}
void CALayer::setShadowOpacity(double opacity) {
    change(shadowOpacity_, std::min(length(opacity), 1.0));
}
void CALayer::setShadowRadius(double radius) {
    change(shadowRadius_, length(radius));
}
void CALayer::setShadowOffset(NSPoint offset) {
    if (std::isfinite(offset.x) && std::isfinite(offset.y)) change(shadowOffset_, offset);
}

double CALayer::opacity() const noexcept {
    return view_ ? view_->alphaValue() : 1;
}
void CALayer::setOpacity(double opacity) {
    if (view_) view_->setAlphaValue(opacity);
}
bool CALayer::masksToBounds() const noexcept {
    return view_ && view_->clipsToBounds();
}
void CALayer::setMasksToBounds(bool masks) {
    if (view_) view_->setClipsToBounds(masks);
}

bool CALayer::throwsShadow() const {
    return shadowOpacity_ > 0 && shadowColor_ && background_ && background_->alphaComponent() > 0;
}

/// Where the shadow can leave marks, in the view's coordinates; empty without one.
NSRect CALayer::shadowExtent() const {
    if (!view_ || !throwsShadow() || view_->bounds().isEmpty()) return {};
    const double reach = 3 * shadowRadius_ + 1;  // it has faded out there
    return view_->bounds().insetBy(-reach, -reach).movedBy(shadowOffset_);
}

// Animations

void CALayer::addAnimation(const std::shared_ptr<CABasicAnimation>& animation,
                           std::optional<std::string_view> key) {
    if (!animation) return;
    redrawAround([&] {
        if (key) std::erase_if(running_, [&](const Running& other) { return other.key == *key; });
        running_.push_back({animation->copy(), std::string(key.value_or("")), now()});
        computePresentation();
    });
}

void CALayer::removeAnimationForKey(std::string_view key) {
    redrawAround([&] {
        std::erase_if(running_, [&](const Running& other) { return other.key == key; });
        computePresentation();
    });
}

void CALayer::removeAllAnimations() {
    if (running_.empty()) return;
    redrawAround([&] {
        running_.clear();
        computePresentation();
    });
}

std::shared_ptr<const CABasicAnimation> CALayer::animationForKey(std::string_view key) const {
    const auto found = std::ranges::find(running_, key, &Running::key);
    return found == running_.end() ? nullptr : found->animation;
}

NSPoint CALayer::position() const noexcept {
    if (!view_) return {};
    const NSRect frame = view_->frame();
    return {frame.origin.x + frame.size.width / 2, frame.origin.y + frame.size.height / 2};
}

void CALayer::showNextFrame() {
    if (animates_) redrawAround([&] { computePresentation(); });
}

/// What the animations show now; those that are over go. Of two for one property the later one shows.
void CALayer::computePresentation() {
    const auto moment = now();
    presentation_ = {};
    animates_ = false;
    std::erase_if(running_, [&](const Running& run) {
        const auto progress = run.animation->progressAfter(moment - run.begin);
        if (!progress) return run.animation->isRemovedOnCompletion();
        run.animation->apply(*progress, opacity(), position(), presentation_);
        animates_ = true;
        return false;
    });
}

}  // namespace kx
