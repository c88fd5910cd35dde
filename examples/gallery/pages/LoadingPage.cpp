// SPDX-License-Identifier: MIT

#include "pages/LoadingPage.h"

#include <limits>
#include <numbers>

#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Views/CABasicAnimation.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/UI/KXSimpleLoadingView.h>

#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

std::shared_ptr<KXSimpleLoadingView> loadingView(double side) {
    auto view = make<KXSimpleLoadingView>(NSRect(0, 0, side, side));
    view->setWantsLayer(true);
    view->startLoading();
    return view;
}

std::shared_ptr<NSView> tile() {
    auto view = make<NSView>(NSRect(0, 0, 48, 48));
    view->setWantsLayer(true);
    view->layer()->setBackgroundColor(NSColor::controlAccentColor());
    view->layer()->setCornerRadius(10);
    view->layer()->setShadowOpacity(0.3);
    return view;
}

void animate(const std::shared_ptr<NSView>& view, std::string_view keyPath,
             CABasicAnimation::AnimatedValue to) {
    const auto animation = CABasicAnimation::animationWithKeyPath(keyPath);
    animation->setToValue(to);
    animation->setDuration(2);
    animation->setRepeatCount(std::numeric_limits<float>::infinity());
    view->layer()->addAnimation(animation);
}

}  // namespace

void LoadingPage::build(Column& column, Gallery&) {
    column.title(text("loading.title"));
    column.paragraph(text("loading.explanation"));
    column.space(12);
    const std::vector<std::shared_ptr<KXSimpleLoadingView>> views{loadingView(32), loadingView(24),
                                                                  loadingView(16)};
    column.row({views.begin(), views.end()}, 32);
    column.row({pushButton("loading.start",
                           [=] {
                               for (const auto& view : views) view->startLoading();
                           }),
                pushButton("loading.stop", [=] {
                    for (const auto& view : views) view->stopLoading();
                })});
    column.caption(text("loading.others"));
    column.space(8);
    const auto fading = tile();
    const auto turning = tile();
    const auto moving = tile();
    column.row({fading, turning, moving}, 48);
    animate(fading, "opacity", 0.0);
    animate(turning, "transform.rotation.z", std::numbers::pi);
    const NSRect place = moving->frame();
    animate(moving, "position", NSPoint{place.origin.x + 24, place.origin.y + 120});
}

}  // namespace gallery
