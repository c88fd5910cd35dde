// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <KXFoundation/Platform/Views/CABasicAnimation.h>
#include <KXFoundation/Platform/Views/LayerPresentation.h>

namespace kx {

namespace {

double between(double from, double to, double progress) {
    return from + (to - from) * progress;
}
NSPoint between(NSPoint from, NSPoint to, double progress) {
    return {between(from.x, to.x, progress), between(from.y, to.y, progress)};
}

bool isFinite(double value) {
    return std::isfinite(value);
}
bool isFinite(NSPoint value) {
    return std::isfinite(value.x) && std::isfinite(value.y);
}

}  // namespace

std::shared_ptr<CABasicAnimation> CABasicAnimation::animationWithKeyPath(std::string_view keyPath) {
    return make<CABasicAnimation>(keyPath);
}

bool CABasicAnimation::init(std::string_view keyPath) {
    keyPath_ = keyPath;
    return Super::init();
}

std::shared_ptr<CABasicAnimation> CABasicAnimation::copy() const {
    auto made = make<CABasicAnimation>(keyPath_);
    made->from_ = from_;
    made->to_ = to_;
    made->duration_ = duration_;
    made->repeatCount_ = repeatCount_;
    made->removedOnCompletion_ = removedOnCompletion_;
    return made;
}

std::optional<double> CABasicAnimation::progressAfter(std::chrono::nanoseconds elapsed) const {
    const double turn = duration_ > 0 ? duration_ : kDefaultDuration;
    const double turns = std::chrono::duration<double>(elapsed).count() / turn;
    if (turns >= (repeatCount_ > 0 ? double(repeatCount_) : 1)) return std::nullopt;
    return turns - std::floor(turns);
}

/// None where an end is given but is of another type or no number.
template <class T>
std::optional<T> CABasicAnimation::valueAt(double progress, T own) const {
    if (!from_ && !to_) return std::nullopt;
    T ends[2] = {own, own};
    const std::optional<AnimatedValue>* given[2] = {&from_, &to_};
    for (int i = 0; i < 2; ++i) {
        if (!*given[i]) continue;
        const T* value = std::get_if<T>(&**given[i]);
        if (!value || !isFinite(*value)) return std::nullopt;
        ends[i] = *value;
    }
    return between(ends[0], ends[1], progress);
}

void CABasicAnimation::apply(double progress, double ownOpacity, NSPoint ownPosition,
                             LayerPresentation& to) const {
    if (keyPath_ == "transform.rotation.z") {
        to.rotation = valueAt(progress, 0.0).value_or(to.rotation);
    } else if (keyPath_ == "opacity") {
        if (const auto opacity = valueAt(progress, ownOpacity)) to.opacity = std::clamp(*opacity, 0.0, 1.0);
    } else if (keyPath_ == "position") {
        if (const auto place = valueAt(progress, ownPosition))
            to.offset = {place->x - ownPosition.x, place->y - ownPosition.y};
    }
}

}  // namespace kx
