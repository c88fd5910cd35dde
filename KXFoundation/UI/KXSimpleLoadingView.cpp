// SPDX-License-Identifier: MIT

#include <limits>
#include <numbers>

#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Views/CABasicAnimation.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/Platform/Views/NSImageView.h>
#include <KXFoundation/Platform/Views/NSLayoutConstraint.h>
#include <KXFoundation/UI/KXSimpleLoadingView.h>

namespace kx {

bool KXSimpleLoadingView::init(NSRect frame) {
    return Super::init(frame) && setUp();
}

bool KXSimpleLoadingView::init(NSCoder& coder) {
    return Super::init(coder) && setUp();
}

bool KXSimpleLoadingView::setUp() {
    auto image = NSImage::imageNamed("common_loading_gray");
    if (!image) image = NSImage::initWithSize({});
    const auto picture = NSImageView::imageViewWithImage(std::move(image));
    picture->setImageScaling(NSImageScaling::ProportionallyUpOrDown);
    picture->setTranslatesAutoresizingMaskIntoConstraints(false);
    addSubview(picture);
    for (const auto edge : {NSLayoutAttribute::Leading, NSLayoutAttribute::Trailing, NSLayoutAttribute::Top,
                            NSLayoutAttribute::Bottom}) {
        NSLayoutConstraint::constraintWithItem(picture, edge, self(), edge)->setActive(true);
    }
    return true;
}

void KXSimpleLoadingView::startLoading() {
    if (!layer()) return;
    layer()->removeAllAnimations();
    const auto turn = CABasicAnimation::animationWithKeyPath("transform.rotation.z");
    turn->setFromValue(0.0);
    turn->setToValue(2 * std::numbers::pi);
    turn->setDuration(0.7);
    turn->setRepeatCount(std::numeric_limits<float>::infinity());
    turn->setRemovedOnCompletion(false);
    layer()->addAnimation(turn);
}

void KXSimpleLoadingView::stopLoading() {
    if (layer()) layer()->removeAllAnimations();
}

}  // namespace kx
