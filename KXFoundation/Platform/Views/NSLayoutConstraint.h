// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <initializer_list>
#include <memory>
#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

class NSView;
class ViewConstraints;

/// A line or a length of a view's frame. Leading is where reading begins: the left, or the right where the
/// view's userInterfaceLayoutDirection() is right to left; constants then count towards the left.
enum class NSLayoutAttribute : std::uint8_t {
    Left,
    Right,
    Top,
    Bottom,
    Leading,
    Trailing,
    CenterX,
    CenterY,
    Width,
    Height,
};

/// Says that an attribute of a view equals one of another view plus a constant, or a constant alone:
///
///     NSLayoutConstraint::activateConstraints({
///         NSLayoutConstraint::constraintWithItem(label, NSLayoutAttribute::Leading, card,
///                                                NSLayoutAttribute::Leading, 6),
///         NSLayoutConstraint::constraintWithItem(label, NSLayoutAttribute::Width, 120),
///     });
///
/// Active constraints place the views inside the nearest view that holds both (with one view, its superview),
/// whenever that is laid out; that view's own size is not theirs to say. Values are handed on from what is
/// known: in the order of activation, the first constraint of which one side is known gives the other side.
/// Where nothing says how wide or high a view is, it gets its fittingSize(); where nothing says where it
/// lies, it stays. A constraint both sides of which are known and differ is left out, with one log line. So
/// constraints in a cycle are harmless, and two lines, or a line and a length, fix a view on an axis.
///
/// Only views whose translatesAutoresizingMaskIntoConstraints() is off are placed. Main thread.
class KX_EXPORT NSLayoutConstraint : public Subclass<NSLayoutConstraint, NSObject> {
  public:
    /// first.attribute == second.attribute + constant. None, after a caller error, for an absent view or
    /// attributes that cannot be equal: lines of different axes, or a line and a length.
    [[nodiscard]] static std::shared_ptr<NSLayoutConstraint> constraintWithItem(
        const std::shared_ptr<NSView>& first, NSLayoutAttribute firstAttribute,
        const std::shared_ptr<NSView>& second, NSLayoutAttribute secondAttribute, double constant = 0);
    /// The view's width or height is the constant.
    [[nodiscard]] static std::shared_ptr<NSLayoutConstraint> constraintWithItem(
        const std::shared_ptr<NSView>& view, NSLayoutAttribute length, double constant);

    /// In their order; absent ones are left out.
    static void activateConstraints(std::initializer_list<std::shared_ptr<NSLayoutConstraint>> constraints);

    [[nodiscard]] std::shared_ptr<NSView> firstItem() const { return first_.lock(); }
    [[nodiscard]] NSLayoutAttribute firstAttribute() const noexcept { return firstAttribute_; }
    /// None without a second view.
    [[nodiscard]] std::shared_ptr<NSView> secondItem() const { return second_.lock(); }
    [[nodiscard]] NSLayoutAttribute secondAttribute() const noexcept { return secondAttribute_; }

    /// Points. What is no finite number counts as 0.
    [[nodiscard]] double constant() const noexcept { return constant_; }
    void setConstant(double constant);

    /// To switch one on while no view holds both of its views is a caller error, and changes nothing. It
    /// goes off by itself when one of its views leaves what holds both.
    [[nodiscard]] bool isActive() const noexcept { return holder_ != nullptr; }
    void setActive(bool active);

    /// "<NSLayoutConstraint KXLabel.leading == NSView.leading + 6>"
    [[nodiscard]] std::string description() const override;

    bool init() { return Super::init(); }

  protected:
    NSLayoutConstraint() = default;

  private:
    friend class ViewConstraints;

    [[nodiscard]] std::shared_ptr<NSView> nearestHolder() const;

    std::weak_ptr<NSView> first_;
    std::weak_ptr<NSView> second_;
    NSLayoutAttribute firstAttribute_ = NSLayoutAttribute::Width;
    NSLayoutAttribute secondAttribute_ = NSLayoutAttribute::Width;
    bool hasSecond_ = false;
    bool conflictIsReported_ = false;
    double constant_ = 0;
    NSView* holder_ = nullptr;  // whose constraints it is among; none while it is off
};

}  // namespace kx
