// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <optional>
#include <string>
#include <string_view>
#include <type_traits>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Views/NSResponder.h>
#include <KXFoundation/Platform/Views/NSUserInterfaceLayoutDirection.h>

namespace kx {

class CALayer;
class GraphicsContext;
class NSCoder;
class NSGestureRecognizer;
class NSLayoutConstraint;
class NSWindow;
class ViewConstraints;

/// A rectangle of a window that draws itself and holds other views. A view owns its subviews; it knows its
/// superview and window without keeping them alive.
///
/// Views belong to the main thread. Once there is an application, a change from another thread is a caller
/// error and changes nothing.
class KX_EXPORT NSView : public Subclass<NSView, NSResponder> {
  public:
    bool init(NSRect frame = {});
    /// From an archive; what is missing or of a wrong type keeps its default.
    bool init(NSCoder& coder);
    /// Writes "frame" and "wantsLayer"; a subclass adds its own keys.
    virtual void encodeWithCoder(NSCoder& coder) const;
    ~NSView() override;

    // Place

    /// In the superview's coordinates. What is not finite counts as 0, a negative size as 0.
    [[nodiscard]] NSRect frame() const noexcept { return frame_; }
    void setFrame(NSRect frame);
    /// The view's own coordinates: the origin is (0, 0).
    [[nodiscard]] NSRect bounds() const noexcept { return {{0, 0}, frame_.size}; }

    /// The size that the content asks for; a side without an opinion is kNoIntrinsicMetric.
    static constexpr double kNoIntrinsicMetric = -1;
    [[nodiscard]] virtual NSSize intrinsicContentSize() const;
    /// The intrinsic size, with the present size for a side without an opinion.
    [[nodiscard]] virtual NSSize fittingSize() const;
    void sizeToFit();
    /// The content asks for another size now. Constraints that follow it are solved again.
    void invalidateIntrinsicContentSize();

    /// Whether the frame is what setFrame() said (the default). Off, the constraints place the view (see
    /// NSLayoutConstraint.h); while it is on, a constraint that wants the view elsewhere is left out.
    [[nodiscard]] bool translatesAutoresizingMaskIntoConstraints() const noexcept { return placesItself_; }
    void setTranslatesAutoresizingMaskIntoConstraints(bool translates);

    // Tree

    [[nodiscard]] std::shared_ptr<NSView> superview() const;
    /// Back to front: the last one is drawn last and hit first.
    [[nodiscard]] const std::vector<std::shared_ptr<NSView>>& subviews() const noexcept { return subviews_; }
    /// Puts the view in front of the others and takes it away from where it was. None does nothing; the view
    /// itself or a view that holds it is a caller error.
    void addSubview(const std::shared_ptr<NSView>& view);
    virtual void removeFromSuperview();
    [[nodiscard]] bool isDescendantOf(const NSView& view) const noexcept;
    [[nodiscard]] std::shared_ptr<NSWindow> window() const;
    [[nodiscard]] std::shared_ptr<NSResponder> nextResponder() const override;

    // Hooks around a change of the tree, for subclasses; they may change the tree themselves.
    virtual void viewWillMoveToSuperview(const std::shared_ptr<NSView>&) {}
    virtual void viewDidMoveToSuperview() {}
    virtual void viewWillMoveToWindow(const std::shared_ptr<NSWindow>&) {}
    virtual void viewDidMoveToWindow() {}
    /// isShown() may have another answer now.
    virtual void viewDidShowOrHide() {}
    virtual void didAddSubview(NSView&) {}
    virtual void willRemoveSubview(NSView&) {}

    // Coordinates

    /// The foremost visible view under the point, which is in the superview's coordinates; none if it misses.
    [[nodiscard]] virtual std::shared_ptr<NSView> hitTest(NSPoint point);
    /// Offers a key that the first responder did not want to the view and, while they decline it, to its
    /// subviews. True if one of them took it.
    virtual bool performKeyEquivalent(const NSEvent& event);
    /// From the coordinates of `view` to the receiver's; absent stands for the window's.
    [[nodiscard]] NSPoint convertPointFromView(NSPoint point, const NSView* view) const noexcept;
    /// From the receiver's coordinates to those of `view`; absent stands for the window's.
    [[nodiscard]] NSPoint convertPointToView(NSPoint point, const NSView* view) const noexcept;
    [[nodiscard]] NSRect convertRectToView(NSRect rect, const NSView* view) const noexcept;

    // Look

    [[nodiscard]] bool isHidden() const noexcept { return hidden_; }
    void setHidden(bool hidden);
    /// Whether it is in a window on the screen, and neither it nor a view that holds it is hidden.
    [[nodiscard]] bool isShown() const;
    /// 0 (unseen, untouchable) to 1; applies to the subviews too.
    [[nodiscard]] double alphaValue() const noexcept { return alpha_; }
    void setAlphaValue(double alpha);
    /// Whether subviews are cut at the bounds. The view's own drawing always is.
    [[nodiscard]] bool clipsToBounds() const noexcept { return clips_; }
    void setClipsToBounds(bool clips);
    /// A view has a layer, with background, rounded corners, shadow and animations, once it wants one.
    [[nodiscard]] bool wantsLayer() const noexcept { return layer_ != nullptr; }
    void setWantsLayer(bool wants);
    [[nodiscard]] const std::shared_ptr<CALayer>& layer() const noexcept { return layer_; }
    [[nodiscard]] NSUserInterfaceLayoutDirection userInterfaceLayoutDirection() const noexcept;
    /// Absent follows the superview; at the top it is left to right.
    void setUserInterfaceLayoutDirection(std::optional<NSUserInterfaceLayoutDirection> direction);

    // Clicks

    /// The recogniser watches the mouse in the view and in what the view holds, but for views there that take
    /// the keys, as buttons do: those take the mouse too. It leaves the view it was with.
    void addGestureRecognizer(const std::shared_ptr<NSGestureRecognizer>& recognizer);
    void removeGestureRecognizer(const std::shared_ptr<NSGestureRecognizer>& recognizer);
    [[nodiscard]] const std::vector<std::shared_ptr<NSGestureRecognizer>>& gestureRecognizers()
        const noexcept {
        return recognizers_;
    }

    // Drawing and layout

    /// Draws the view's own content; the context has the view's coordinates and is clipped to its bounds.
    virtual void drawRect(GraphicsContext& context, NSRect dirtyRect);
    /// Asks for the rectangle to be drawn again, at the window's next displayIfNeeded().
    void setNeedsDisplay(NSRect rect);
    void setNeedsDisplay() { setNeedsDisplay(bounds()); }
    /// Places the subviews; called before drawing, after a change of size or setNeedsLayout().
    virtual void layout() {}
    void setNeedsLayout();
    void layoutSubtreeIfNeeded();

    // Identity

    [[nodiscard]] std::int64_t tag() const noexcept { return tag_; }
    void setTag(std::int64_t tag) noexcept { tag_ = tag; }
    [[nodiscard]] const std::string& identifier() const noexcept { return identifier_; }
    void setIdentifier(std::string_view identifier) { identifier_ = identifier; }
    /// "<NSButton 12,8 96x28>", and " hidden" if it is.
    [[nodiscard]] std::string description() const override;

  protected:
    NSView() = default;

    /// Whether the calling thread may change the view; false after reporting a caller error.
    [[nodiscard]] bool allowsChange() const;

    /// Stores a property that shows, and redraws. False if it is equal or the thread may not change the view.
    template <class T>
    bool change(T& property, std::type_identity_t<T> value) {
        if (property == value || !allowsChange()) return false;
        property = std::move(value);
        setNeedsDisplay();
        if (followsContent_) invalidateIntrinsicContentSize();
        return true;
    }

  private:
    friend class CALayer;
    friend class NSLayoutConstraint;
    friend class NSWindow;
    friend class ViewConstraints;
    friend class ViewDrawing;

    [[nodiscard]] bool isSeen() const noexcept { return !hidden_ && alpha_ > 0; }
    [[nodiscard]] bool isDrawn() const noexcept { return !hidden_ && shownAlpha() > 0; }
    [[nodiscard]] double shownAlpha() const noexcept;
    [[nodiscard]] NSRect placedInSuperview(NSRect rect) const;
    [[nodiscard]] NSRect ownExtent() const;
    [[nodiscard]] NSWindow* rootWindow() const noexcept;
    [[nodiscard]] NSPoint originInWindow() const noexcept;
    [[nodiscard]] NSRect drawnExtent() const;
    void invalidate(NSRect rect);
    template <class Change>
    void redrawAround(Change change) {
        invalidate(drawnExtent());
        change();
        invalidate(drawnExtent());
    }

    void takeOut();
    void attachToWindow(NSWindow& window);
    void detachFromWindow();
    void willChangeWindow(const std::shared_ptr<NSWindow>& window);
    void didChangeWindow();
    void didShowOrHide();
    void markLayoutUpwards() noexcept;
    ViewConstraints& ensureConstraints();
    void dropConstraintsAcross();
    void directionDidChange();

    NSRect frame_;
    NSView* superview_ = nullptr;  // cleared by the superview before it dies
    NSWindow* window_ = nullptr;   // of a content view only; cleared by the window before it dies
    std::vector<std::shared_ptr<NSView>> subviews_;
    std::shared_ptr<CALayer> layer_;
    std::shared_ptr<ViewConstraints> constraints_;  // between the views in here; none at first
    std::vector<std::shared_ptr<NSGestureRecognizer>> recognizers_;
    std::optional<NSUserInterfaceLayoutDirection> direction_;
    double alpha_ = 1;
    bool hidden_ = false;
    bool clips_ = false;
    bool placesItself_ = true;
    bool followsContent_ = false;  // a constraint's solution took the size that the content asks for
    bool needsLayout_ = true;
    bool subviewNeedsLayout_ = false;  // somewhere below
    bool moving_ = false;              // inside a hook of its own removal or addition
    std::int64_t tag_ = 0;
    std::string identifier_;
};

}  // namespace kx
