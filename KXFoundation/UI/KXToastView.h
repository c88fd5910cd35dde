// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <string_view>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSNotificationName.h>
#include <KXFoundation/Platform/Views/NSView.h>

namespace kx {

class NSImage;
class NSImageView;
class NSLayoutConstraint;
class NSNotification;
class NSTextView;

/// Posted by an application on the main thread to take away every toast that is listening, shown or not, at
/// once.
inline constinit const NSNotificationName KXToastViewShouldDismissWithoutAnimationNotification{
    "KXToastViewShouldDismissWithoutAnimationNotification"};

/// A short message over the key window: a dimmed layer as large as the window and, in its middle, a white
/// card with a text and, above it, a picture.
///
///     KXToastView::initWithTitle("Saved", nullptr)->showWithTimeout(3);
///
/// A shown toast lives in a child window of its own until its time is up, whether anybody holds it or not,
/// and its text is read out where the desktop has a screen reader. It listens for the notification above from
/// when it is made until it is dismissed. There is no animation. Main thread.
class KX_EXPORT KXToastView : public Subclass<KXToastView, NSView> {
  public:
    /// As large as the key window is now; 0 x 0 without one. An absent picture takes no room.
    [[nodiscard]] static std::shared_ptr<KXToastView> initWithTitle(std::optional<std::string_view> title,
                                                                    std::shared_ptr<NSImage> customImage);
    bool init(std::optional<std::string_view> title, std::shared_ptr<NSImage> customImage);
    ~KXToastView() override;

    // Showing

    /// For 40 seconds.
    void show() { showWithTimeout(0); }
    /// Seconds; less than 0.5, and what is no number, shows it for 40. When the time is up its window leaves
    /// the screen and dismiss() is called, even if the toast was removed or shown anew meanwhile.
    void showWithTimeout(double timeout);

    /// Stops listening for the notification. The toast stays on the screen until its time is up.
    void dismiss() { dismissWithCompleteBlock(nullptr); }
    /// The same, and calls the block, before this returns. A toast whose alphaValue() is 0 goes on listening.
    void dismissWithCompleteBlock(const std::function<void()>& block);
    /// Takes the toast out of its window at once; the notification's handler.
    virtual void dismissWithoutAnimation();

    /// Whether a click anywhere on the toast, but on a view in it that takes the keys, dismisses it; not so
    /// at first.
    [[nodiscard]] bool shouldDismissWhenClicked() const noexcept { return shouldDismissWhenClicked_; }
    void setShouldDismissWhenClicked(bool should) noexcept { shouldDismissWhenClicked_ = should; }

    // Hooks for subclasses, which call the base's.

    /// Before the toast is shown: it listens for the notification, once.
    virtual void willPresentToastView();
    /// Never called by the toast itself.
    virtual void didPresentToastView() {}
    /// Before it is dismissed or removed: it stops listening.
    virtual void willDismissToastView();
    /// After dismissWithoutAnimation().
    virtual void didDismissToastView() {}
    /// The click recogniser's action.
    virtual void toastViewClicked();
    virtual void keyboardWillShow(const NSNotification&) {}
    /// Takes the picture off the card too.
    void removeFromSuperview() override;

    // Parts. Setting one moves no view: a subclass that puts another in its place names it here.

    /// The card.
    [[nodiscard]] const std::shared_ptr<NSView>& contentView() const noexcept { return contentView_; }
    void setContentView(std::shared_ptr<NSView> view) noexcept { contentView_ = std::move(view); }
    /// removeFromSuperview() takes it off the card.
    [[nodiscard]] const std::shared_ptr<NSImageView>& indicatorView() const noexcept {
        return indicatorView_;
    }
    void setIndicatorView(std::shared_ptr<NSImageView> view) noexcept { indicatorView_ = std::move(view); }
    /// Its text is what is read out.
    [[nodiscard]] const std::shared_ptr<NSTextView>& titleLbl() const noexcept { return titleLbl_; }
    void setTitleLbl(std::shared_ptr<NSTextView> view) noexcept { titleLbl_ = std::move(view); }
    /// Of the card's height.
    [[nodiscard]] const std::shared_ptr<NSLayoutConstraint>& titleLabelHeightConstraint() const noexcept {
        return titleLabelHeightConstraint_;
    }
    void setTitleLabelHeightConstraint(std::shared_ptr<NSLayoutConstraint> constraint) noexcept {
        titleLabelHeightConstraint_ = std::move(constraint);
    }
    [[nodiscard]] const std::shared_ptr<NSLayoutConstraint>& contentViewCenterY() const noexcept {
        return contentViewCenterY_;
    }
    void setContentViewCenterY(std::shared_ptr<NSLayoutConstraint> constraint) noexcept {
        contentViewCenterY_ = std::move(constraint);
    }
    /// The card's width in points, 235. A change does not change the layout.
    [[nodiscard]] double viewWidth() const noexcept { return viewWidth_; }
    void setViewWidth(double width) noexcept { viewWidth_ = width; }
    /// The application's own; the toast never looks at it.
    [[nodiscard]] double contentViewBottomY() const noexcept { return contentViewBottomY_; }
    void setContentViewBottomY(double y) noexcept { contentViewBottomY_ = y; }

  protected:
    KXToastView() = default;

  private:
    void listen();
    void stopListening();
    void addCard();
    void addPicture(std::shared_ptr<NSImage> image);
    void addTitle(std::optional<std::string_view> title);
    void constrainContent();
    void constrainCard();

    double viewWidth_ = 0;
    double contentViewBottomY_ = 0;
    bool shouldDismissWhenClicked_ = false;
    std::shared_ptr<NSView> contentView_;
    std::shared_ptr<NSImageView> indicatorView_;
    std::shared_ptr<NSTextView> titleLbl_;
    std::shared_ptr<NSLayoutConstraint> titleLabelHeightConstraint_;
    std::shared_ptr<NSLayoutConstraint> contentViewCenterY_;
};

}  // namespace kx
