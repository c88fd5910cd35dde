// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>
#include <string>
#include <string_view>
#include <variant>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

struct LayerPresentation;

/// Leads one property of a layer evenly from one value to another, once or again and again. It is plain data:
/// CALayer::addAnimation takes a copy, and from then on the clock moves it.
///
/// Key paths: "transform.rotation.z" (radians, clockwise about the middle), "opacity" (0 to 1) and "position"
/// (where the middle lies in the superview, in points). Another one, or a value of another type, shows
/// nothing.
class KX_EXPORT CABasicAnimation : public Subclass<CABasicAnimation, NSObject> {
  public:
    using AnimatedValue = std::variant<double, NSPoint>;

    [[nodiscard]] static std::shared_ptr<CABasicAnimation> animationWithKeyPath(std::string_view keyPath);
    bool init(std::string_view keyPath);

    [[nodiscard]] const std::string& keyPath() const noexcept { return keyPath_; }

    /// An absent end is the value that the layer has by itself; without either nothing is animated.
    [[nodiscard]] const std::optional<AnimatedValue>& fromValue() const noexcept { return from_; }
    void setFromValue(std::optional<AnimatedValue> value) { from_ = value; }
    [[nodiscard]] const std::optional<AnimatedValue>& toValue() const noexcept { return to_; }
    void setToValue(std::optional<AnimatedValue> value) { to_ = value; }

    static constexpr double kDefaultDuration = 0.25;
    /// Seconds of one turn; what is not above 0 counts as kDefaultDuration.
    [[nodiscard]] double duration() const noexcept { return duration_; }
    void setDuration(double seconds) noexcept { duration_ = seconds; }
    /// How many turns; infinity is without end, what is not above 0 counts as 1.
    [[nodiscard]] float repeatCount() const noexcept { return repeatCount_; }
    void setRepeatCount(float count) noexcept { repeatCount_ = count; }
    /// Whether it leaves its layer at its end (the default). If not it stays there, without effect.
    [[nodiscard]] bool isRemovedOnCompletion() const noexcept { return removedOnCompletion_; }
    void setRemovedOnCompletion(bool removed) noexcept { removedOnCompletion_ = removed; }

    [[nodiscard]] std::shared_ptr<CABasicAnimation> copy() const;

    /// How far a turn is after so much time, 0 to 1; none once the animation is over.
    [[nodiscard]] std::optional<double> progressAfter(std::chrono::nanoseconds elapsed) const;
    /// Adds the animated property to a presentation, the layer's own values being these.
    void apply(double progress, double ownOpacity, NSPoint ownPosition, LayerPresentation& to) const;

  protected:
    CABasicAnimation() = default;

  private:
    template <class T>
    [[nodiscard]] std::optional<T> valueAt(double progress, T own) const;

    std::string keyPath_;
    std::optional<AnimatedValue> from_;
    std::optional<AnimatedValue> to_;
    double duration_ = 0;
    float repeatCount_ = 0;
    bool removedOnCompletion_ = true;
};

}  // namespace kx
