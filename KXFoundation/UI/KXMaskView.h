// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Views/NSGestureRecognizer.h>
#include <KXFoundation/Platform/Views/NSView.h>

namespace kx {

class KXMaskView;

/// Hears of a mask's end. Main thread.
class KX_EXPORT KXMaskViewDelegate {
  public:
    virtual ~KXMaskViewDelegate();
    /// The mask is out of its window. May drop the last reference to it, or show it again.
    virtual void maskViewDidDismiss(KXMaskView& mask) = 0;
};

/// Dims the key window until it is clicked.
///
///     auto mask = make<KXMaskView>();
///     mask->setDelegate(delegate);
///     mask->show();
///
/// A shown mask is kept alive by its window. Main thread.
class KX_EXPORT KXMaskView : public Subclass<KXMaskView, NSView>, public NSGestureRecognizerDelegate {
  public:
    bool init(NSRect frame = {});
    bool init(NSCoder& coder);

    /// Covers the key window's content, in a child window of its own. Nothing without a key window.
    void show();
    /// Takes the mask and its window away, then tells the delegate; a click anywhere on the mask does so, but
    /// on a view in it that takes the keys, such as a button.
    virtual void dismiss();

    /// Held weakly.
    [[nodiscard]] std::shared_ptr<KXMaskViewDelegate> delegate() const { return delegate_.lock(); }
    void setDelegate(const std::shared_ptr<KXMaskViewDelegate>& delegate) { delegate_ = delegate; }

    /// Always true.
    [[nodiscard]] bool gestureRecognizerShouldReceiveTouch(NSGestureRecognizer& recognizer,
                                                           const NSTouch& touch) override;

  protected:
    KXMaskView() = default;

  private:
    bool setUp();
    void leaveWindow();

    std::weak_ptr<KXMaskViewDelegate> delegate_;
    std::weak_ptr<NSWindow> shown_;  // the window that show() made
};

}  // namespace kx
