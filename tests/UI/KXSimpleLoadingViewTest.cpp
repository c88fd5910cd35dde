// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/CABasicAnimation.h>
#include <KXFoundation/UI/KXSimpleLoadingView.h>

#include "UI/TimedWindow.h"

namespace kx {
namespace {

struct Loading : testing::TimedWindow {
    Loading() {
        view->setWantsLayer(true);
        shown.content().addSubview(view);
    }
    const std::shared_ptr<KXSimpleLoadingView> view = make<KXSimpleLoadingView>(NSRect(10, 10, 40, 40));
};

TEST_F(Loading, StartsOnceAndStopsEverything) {
    view->startLoading();
    view->layer()->addAnimation(CABasicAnimation::animationWithKeyPath("opacity"), "others");
    view->startLoading();
    EXPECT_EQ(view->layer()->animationCount(), 1U);
    view->stopLoading();
    EXPECT_EQ(view->layer()->animationCount(), 0U);
    view->setWantsLayer(false);
    view->startLoading();
    view->stopLoading();
    view->layoutSubtreeIfNeeded();
    EXPECT_EQ(view->subviews().at(0)->frame(), NSRect(0, 0, 40, 40));
}

TEST_F(Loading, DrawsFramesOnlyWhileItIsSeenAndTurns) {
    constexpr double kFrame = 1.0 / 60;
    const auto frames = [&] {
        int drawn = 0;
        for (int i = 0; i < 10; ++i) {
            shown.window->displayIfNeeded();
            pass(kFrame);
            drawn += shown.window->invalidRegion().isEmpty() ? 0 : 1;
        }
        shown.window->displayIfNeeded();
        return drawn;
    };
    EXPECT_EQ(frames(), 0) << "still";
    view->startLoading();
    EXPECT_EQ(frames(), 10) << "turning";
    view->setHidden(true);
    EXPECT_LE(frames(), 1);
    EXPECT_EQ(clock->pendingTimers(), 0U) << "hidden";
    view->setHidden(false);
    EXPECT_EQ(frames(), 10) << "seen again";
    view->removeFromSuperview();
    EXPECT_LE(frames(), 1);
    EXPECT_EQ(clock->pendingTimers(), 0U) << "removed";
    shown.content().addSubview(view);
    view->stopLoading();
    EXPECT_EQ(frames(), 0) << "stopped";
    EXPECT_EQ(clock->pendingTimers(), 0U) << "stopped";
}

}  // namespace
}  // namespace kx
