// SPDX-License-Identifier: MIT

#include <cmath>
#include <cstdio>

#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Views/LayoutAxis.h>
#include <KXFoundation/Platform/Views/NSLayoutConstraint.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/ViewConstraints.h>

namespace kx {

namespace {

double finite(double value) {
    return std::isfinite(value) ? value : 0;
}

bool canBeEqual(NSLayoutAttribute a, NSLayoutAttribute b) {
    if (isLength(a) || isLength(b)) return isLength(a) && isLength(b);
    return axisOf(a) == axisOf(b);
}

const char* nameOf(NSLayoutAttribute attribute) {
    constexpr const char* kNames[] = {"left",     "right",   "top",     "bottom", "leading",
                                      "trailing", "centerX", "centerY", "width",  "height"};
    return kNames[static_cast<std::size_t>(attribute)];
}

std::string textOf(const std::shared_ptr<NSView>& view, NSLayoutAttribute attribute) {
    return (view ? view->className() : std::string("(gone)")) + "." + nameOf(attribute);
}

}  // namespace

std::shared_ptr<NSLayoutConstraint> NSLayoutConstraint::constraintWithItem(
    const std::shared_ptr<NSView>& first, NSLayoutAttribute firstAttribute,
    const std::shared_ptr<NSView>& second, NSLayoutAttribute secondAttribute, double constant) {
    if (!first || !second || !canBeEqual(firstAttribute, secondAttribute)) {
        callerError(std::string("NSLayoutConstraint: ") + nameOf(firstAttribute) + " and " +
                    nameOf(secondAttribute) + " of these views cannot be equal");
        return nullptr;
    }
    auto made = make<NSLayoutConstraint>();
    made->first_ = first;
    made->firstAttribute_ = firstAttribute;
    made->second_ = second;
    made->secondAttribute_ = secondAttribute;
    made->hasSecond_ = true;
    made->constant_ = finite(constant);
    return made;
}

std::shared_ptr<NSLayoutConstraint> NSLayoutConstraint::constraintWithItem(
    const std::shared_ptr<NSView>& view, NSLayoutAttribute length, double constant) {
    if (!view || !isLength(length)) {
        callerError(std::string("NSLayoutConstraint: ") + nameOf(length) + " is no length of a view");
        return nullptr;
    }
    auto made = make<NSLayoutConstraint>();
    made->first_ = view;
    made->firstAttribute_ = length;
    made->constant_ = finite(constant);
    return made;
}

void NSLayoutConstraint::activateConstraints(
    std::initializer_list<std::shared_ptr<NSLayoutConstraint>> constraints) {
    for (const auto& constraint : constraints) {
        if (constraint) constraint->setActive(true);
    }
}

void NSLayoutConstraint::setConstant(double constant) {
    constant = finite(constant);
    if (std::exchange(constant_, constant) == constant) return;
    if (holder_) holder_->setNeedsLayout();
}

/// The nearest view that holds the first view and, if there is one, is or holds the second.
std::shared_ptr<NSView> NSLayoutConstraint::nearestHolder() const {
    const auto first = first_.lock();
    const auto second = second_.lock();
    if (!first || (hasSecond_ && !second)) return nullptr;
    if (!second) return first->superview();
    auto holder = first == second ? first->superview() : first;
    while (holder && !second->isDescendantOf(*holder)) holder = holder->superview();
    return holder;
}

void NSLayoutConstraint::setActive(bool active) {
    if (active == isActive()) return;
    const auto held = self();
    if (!active) return holder_->ensureConstraints().remove(*this);
    const auto holder = nearestHolder();
    if (!holder) return callerError(description() + ": nothing holds these views");
    if (holder->allowsChange()) holder->ensureConstraints().add(held);
}

std::string NSLayoutConstraint::description() const {
    char constant[32];
    std::snprintf(constant, sizeof constant, "%g", constant_);
    std::string text = "<NSLayoutConstraint " + textOf(first_.lock(), firstAttribute_) + " == ";
    if (hasSecond_) text += textOf(second_.lock(), secondAttribute_) + " + ";
    return text + constant + ">";
}

}  // namespace kx
