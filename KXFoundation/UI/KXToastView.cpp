// SPDX-License-Identifier: MIT

#include <chrono>

#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Services/ScreenReader.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSClickGestureRecognizer.h>
#include <KXFoundation/Platform/Views/NSImageView.h>
#include <KXFoundation/Platform/Views/NSLayoutConstraint.h>
#include <KXFoundation/Platform/Views/NSTextView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/UI/KXToastView.h>

namespace kx {

namespace {

using enum NSLayoutAttribute;
constexpr double kSideMargin = 6;         // points, between card and text
constexpr double kTallestText = 100;      // points
constexpr double kHeightMargin = 16;      // points, of the card over picture and text
constexpr double kShortestTimeout = 0.5;  // seconds; less means the usual time
constexpr double kUsualTimeout = 40;

std::shared_ptr<NSWindow> keyWindow() {
    return NSApplication::sharedApplication()->keyWindow();
}

/// In whole nanoseconds, cut towards zero.
std::chrono::nanoseconds delayFor(double timeout) {
    const double seconds = timeout >= kShortestTimeout ? timeout : kUsualTimeout;
    constexpr double kLongest = 9e9;  // what 64 bits of nanoseconds hold
    return std::chrono::nanoseconds(static_cast<std::int64_t>(std::min(seconds, kLongest) * 1e9));
}

/// From whichever window has it by now, or from the screen if somebody has ordered it there by itself.
void takeAway(const std::shared_ptr<NSWindow>& window) {
    if (const auto key = keyWindow()) key->removeChildWindow(window);
    window->close();
}

auto equals(const std::shared_ptr<NSView>& view, NSLayoutAttribute attribute,
            const std::shared_ptr<NSView>& other, NSLayoutAttribute otherAttribute, double constant = 0) {
    return NSLayoutConstraint::constraintWithItem(view, attribute, other, otherAttribute, constant);
}
auto equals(const std::shared_ptr<NSView>& view, NSLayoutAttribute length, double constant) {
    return NSLayoutConstraint::constraintWithItem(view, length, constant);
}

}  // namespace

std::shared_ptr<KXToastView> KXToastView::initWithTitle(std::optional<std::string_view> title,
                                                        std::shared_ptr<NSImage> customImage) {
    return make<KXToastView>(title, std::move(customImage));
}

bool KXToastView::init(std::optional<std::string_view> title, std::shared_ptr<NSImage> customImage) {
    const auto key = keyWindow();
    if (!Super::init(NSRect({}, key ? key->frame().size : NSSize()))) return false;
    addGestureRecognizer(NSClickGestureRecognizer::initWithTarget(self(), &KXToastView::toastViewClicked));
    listen();
    setWantsLayer(true);
    viewWidth_ = 235;
    addCard();
    addPicture(std::move(customImage));
    addTitle(title);
    layer()->setBackgroundColor(NSColor::colorWithWhite(0, 0.4));
    contentView_->addSubview(indicatorView_);
    contentView_->addSubview(titleLbl_);
    constrainContent();
    constrainCard();
    return true;
}

KXToastView::~KXToastView() {
    NSNotificationCenter::defaultCenter().removeObserver(*this);
}

void KXToastView::addCard() {
    contentView_ = make<NSView>();
    contentView_->setWantsLayer(true);
    const auto& card = contentView_->layer();
    card->setBackgroundColor(NSColor::whiteColor());
    card->setCornerRadius(6);
    card->setShadowOpacity(1);
    card->setShadowRadius(8);
    card->setShadowOffset({0, 0});
    card->setShadowColor(NSColor::colorWithWhite(0, 0.2));
    contentView_->setTranslatesAutoresizingMaskIntoConstraints(false);
    contentView_->setClipsToBounds(true);
    addSubview(contentView_);
}

void KXToastView::addPicture(std::shared_ptr<NSImage> image) {
    indicatorView_ = NSImageView::imageViewWithImage(std::move(image));
    indicatorView_->setTranslatesAutoresizingMaskIntoConstraints(false);
}

void KXToastView::addTitle(std::optional<std::string_view> title) {
    titleLbl_ = make<NSTextView>();
    titleLbl_->setFont(NSFont::fontWithNameOrFallback("PingFangSC-Regular", 14));
    titleLbl_->setString(title);
    titleLbl_->setTextColor(NSColor::colorWithRed(0.2, 0.2, 0.2, 1));
    titleLbl_->setTranslatesAutoresizingMaskIntoConstraints(false);
}

void KXToastView::constrainContent() {
    const auto image = indicatorView_->image();
    const NSSize picture = image ? image->size() : NSSize();
    NSLayoutConstraint::activateConstraints({
        equals(indicatorView_, Top, contentView_, Top),
        equals(indicatorView_, CenterX, contentView_, CenterX),
        equals(indicatorView_, Width, picture.width),
        equals(indicatorView_, Height, picture.height),
        equals(titleLbl_, Top, indicatorView_, Bottom),
        equals(titleLbl_, Leading, contentView_, Leading, kSideMargin),
        equals(titleLbl_, Trailing, contentView_, Trailing, -kSideMargin),
    });
}

void KXToastView::constrainCard() {
    titleLbl_->setMaxSize({viewWidth_ - 2 * kSideMargin, kTallestText});
    const auto image = indicatorView_->image();
    const double height =
        (image ? image->size().height : 0) + titleLbl_->fittingSize().height + kHeightMargin;
    contentViewCenterY_ = equals(contentView_, CenterY, self(), CenterY);
    titleLabelHeightConstraint_ = equals(contentView_, Height, height);
    NSLayoutConstraint::activateConstraints({
        equals(contentView_, CenterX, self(), CenterX),
        contentViewCenterY_,
        equals(contentView_, Width, viewWidth_),
        titleLabelHeightConstraint_,
    });
}

// Showing

void KXToastView::showWithTimeout(double timeout) {
    if (!allowsChange()) return;
    const auto held = self();
    willPresentToastView();
    const auto window = make<NSWindow>();
    window->setContentView(held);
    if (const auto key = keyWindow()) {
        key->addChildWindow(window, NSWindowOrderingMode::Above);
        if (titleLbl_) ScreenReader::slot().current().announce(titleLbl_->string());
    }
    DispatchQueue::main().after(delayFor(timeout), [window, held] {
        takeAway(window);
        held->dismiss();
    });
}

void KXToastView::dismissWithCompleteBlock(const std::function<void()>& block) {
    const auto held = self();
    if (alphaValue() != 0) willDismissToastView();
    if (block) block();
}

void KXToastView::dismissWithoutAnimation() {
    if (!allowsChange()) return;
    const auto held = self();
    willDismissToastView();
    removeFromSuperview();
    didDismissToastView();
}

void KXToastView::removeFromSuperview() {
    const auto held = self();
    Super::removeFromSuperview();
    if (indicatorView_) indicatorView_->removeFromSuperview();
}

void KXToastView::listen() {
    NSNotificationCenter::defaultCenter().addObserver(self(), &KXToastView::dismissWithoutAnimation,
                                                      KXToastViewShouldDismissWithoutAnimationNotification);
}

void KXToastView::stopListening() {
    NSNotificationCenter::defaultCenter().removeObserver(
        *this, KXToastViewShouldDismissWithoutAnimationNotification);
}

void KXToastView::willPresentToastView() {
    stopListening();
    listen();
}

void KXToastView::willDismissToastView() {
    stopListening();
}

void KXToastView::toastViewClicked() {
    if (shouldDismissWhenClicked_) dismiss();
}

}  // namespace kx
