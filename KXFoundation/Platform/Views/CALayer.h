// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Views/LayerPresentation.h>

namespace kx {

class CABasicAnimation;
class NSColor;
class NSView;

/// What a view looks like beneath its own drawing: a background with rounded corners and a shadow, and the
/// animations that turn, move or fade the view with all that it holds. A view makes its layer
/// itself (NSView::setWantsLayer); one whose view is gone shows nothing. Main thread.
class KX_EXPORT CALayer : public Subclass<CALayer, NSObject> {
  public:
    bool init();
    ~CALayer() override;

    /// None (the default) draws nothing, and throws no shadow.
    [[nodiscard]] const std::shared_ptr<NSColor>& backgroundColor() const noexcept { return background_; }
    void setBackgroundColor(std::shared_ptr<NSColor> color);
    /// Points; drawn as half of the shorter side at most. Rounds the background, the shadow and, while the
    /// view clips, what is cut.
    [[nodiscard]] double cornerRadius() const noexcept { return cornerRadius_; }
    void setCornerRadius(double radius);

    // The shadow that the background throws. It is never clipped at the view's own bounds.
    /// Black at first; none throws no shadow.
    [[nodiscard]] const std::shared_ptr<NSColor>& shadowColor() const noexcept { return shadowColor_; }
    void setShadowColor(std::shared_ptr<NSColor> color);
    /// 0 (the default: none) to 1, times the colour's own.
    [[nodiscard]] double shadowOpacity() const noexcept { return shadowOpacity_; }
    void setShadowOpacity(double opacity);
    /// Points, the standard deviation of the blur; 3 at first.
    [[nodiscard]] double shadowRadius() const noexcept { return shadowRadius_; }
    void setShadowRadius(double radius);
    /// Points, y down; (0, 3) at first.
    [[nodiscard]] NSPoint shadowOffset() const noexcept { return shadowOffset_; }
    void setShadowOffset(NSPoint offset);

    /// The view's alphaValue() under its other name.
    [[nodiscard]] double opacity() const noexcept;
    void setOpacity(double opacity);
    /// The view's clipsToBounds() under its other name.
    [[nodiscard]] bool masksToBounds() const noexcept;
    void setMasksToBounds(bool masks);

    // Animations

    /// Begins a copy of the animation now. With a key it takes the place of the one that has the key.
    void addAnimation(const std::shared_ptr<CABasicAnimation>& animation,
                      std::optional<std::string_view> key = std::nullopt);
    void removeAnimationForKey(std::string_view key);
    void removeAllAnimations();
    /// Those that run, and those that have ended but stay.
    [[nodiscard]] std::size_t animationCount() const noexcept { return running_.size(); }
    /// None if there is none of that key.
    [[nodiscard]] std::shared_ptr<const CABasicAnimation> animationForKey(std::string_view key) const;

  protected:
    CALayer() = default;

  private:
    friend class FrameTimer;
    friend class NSView;
    friend class ViewDrawing;

    struct Running {
        std::shared_ptr<const CABasicAnimation> animation;
        std::string key;
        std::chrono::nanoseconds begin;
    };

    template <class T>
    void change(T& property, T value);
    template <class Change>
    void redrawAround(Change change);
    [[nodiscard]] NSRect shadowExtent() const;
    [[nodiscard]] bool throwsShadow() const;
    void showNextFrame();
    void computePresentation();
    [[nodiscard]] NSPoint position() const noexcept;

    NSView* view_ = nullptr;  // cleared by the view before it dies
    std::shared_ptr<NSColor> background_;
    std::shared_ptr<NSColor> shadowColor_;
    double cornerRadius_ = 0;
    double shadowOpacity_ = 0;
    double shadowRadius_ = 3;
    NSPoint shadowOffset_{0, 3};
    std::vector<Running> running_;
    LayerPresentation presentation_;  // what the animations make of the view; changes only with its pixels
    bool animates_ = false;           // there are further frames to come
};

}  // namespace kx
