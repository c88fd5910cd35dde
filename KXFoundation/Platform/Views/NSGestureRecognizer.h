// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

class NSGestureRecognizer;
class NSView;

/// What touches a view, and where.
struct NSTouch {
    enum class Type : std::uint8_t { Direct, Indirect, Mouse };
    Type type = Type::Mouse;
    NSPoint locationInWindow{};    ///< in the content view's coordinates
    std::shared_ptr<NSView> view;  ///< the foremost one there
    int clickCount = 0;            ///< 1 for a click, 2 for a double click
};

/// Has a say in what a recogniser does.
class KX_EXPORT NSGestureRecognizerDelegate {
  public:
    virtual ~NSGestureRecognizerDelegate();
    /// Whether the recogniser sees the touch; asked when it begins.
    [[nodiscard]] virtual bool gestureRecognizerShouldReceiveTouch(NSGestureRecognizer& recognizer,
                                                                   const NSTouch& touch);
};

/// Watches the mouse in a view (NSView::addGestureRecognizer), beside the view's own handling, and calls its
/// action when it has seen its gesture. Main thread.
class KX_EXPORT NSGestureRecognizer : public Subclass<NSGestureRecognizer, NSObject> {
  public:
    /// May remove the view, close its window and drop the last reference to either.
    void setAction(std::function<void()> action) { action_ = std::move(action); }

    /// None (the default) lets every touch through. Held weakly.
    [[nodiscard]] std::shared_ptr<NSGestureRecognizerDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(const std::shared_ptr<NSGestureRecognizerDelegate>& delegate) { delegate_ = delegate; }

    [[nodiscard]] bool isEnabled() const noexcept { return enabled_; }
    void setEnabled(bool enabled) noexcept { enabled_ = enabled; }

    /// The view that it watches; none before it was given to one.
    [[nodiscard]] std::shared_ptr<NSView> view() const;

    // What the window tells it of a touch that began in the view.
    virtual void touchDidBegin(const NSTouch&) {}
    virtual void touchDidEnd(const NSTouch&) {}

    bool init() { return Super::init(); }

  protected:
    NSGestureRecognizer() = default;
    void callAction();

  private:
    friend class NSView;
    friend class NSWindow;

    /// Whether it wants to see the touch that begins.
    [[nodiscard]] bool accepts(const NSTouch& touch);

    std::function<void()> action_;
    std::weak_ptr<NSGestureRecognizerDelegate> delegate_;
    NSView* view_ = nullptr;  // cleared by the view before it dies
    bool enabled_ = true;
};

}  // namespace kx
