// SPDX-License-Identifier: MIT

#include <thread>

#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/UI/KXMaskView.h>

#include "UI/TimedWindow.h"

namespace kx {
namespace {

using Mask = testing::TimedWindow;

struct Delegate final : KXMaskViewDelegate {
    void maskViewDidDismiss(KXMaskView& mask) override {
        ++calls;
        if (react) react(mask);
    }
    int calls = 0;
    std::function<void(KXMaskView&)> react;
};

TEST_F(Mask, CoversTheKeyWindowUntilItIsClicked) {
    const auto delegate = std::make_shared<Delegate>();
    auto mask = make<KXMaskView>();
    mask->setDelegate(delegate);
    mask->show();
    mask->show();
    EXPECT_EQ(mask->frame(), NSRect(0, 0, 640, 480));
    const std::weak_ptr<KXMaskView> watched = std::exchange(mask, nullptr);
    shown.window->displayIfNeeded();
    EXPECT_EQ(children(), 1U) << "shown twice it has one window";
    {
        const testing::LenientMode lenient;
        const testing::CapturedLog log;
        std::thread([&] { watched.lock()->dismiss(); }).join();
        EXPECT_EQ(delegate->calls, 0) << "not on another thread";
    }
    shown.surface().click({600, 20});
    EXPECT_EQ(delegate->calls, 1);
    EXPECT_EQ(children(), 0U);
    EXPECT_TRUE(watched.expired());
    shown.surface().click({600, 20});
    EXPECT_EQ(delegate->calls, 1);
}

TEST_F(Mask, WithoutAKeyWindowNothingIsShown) {
    shown.window->close();
    const auto mask = make<KXMaskView>(NSRect(1, 2, 3, 4));
    mask->show();
    EXPECT_EQ(mask->window(), nullptr);
    EXPECT_EQ(mask->frame(), NSRect(1, 2, 3, 4));
}

TEST_F(Mask, LeavesAWindowThatIsNotItsOwn) {
    const auto mask = make<KXMaskView>(NSRect(0, 0, 100, 100));
    auto delegate = std::make_shared<Delegate>();
    mask->setDelegate(delegate);
    shown.content().addSubview(mask);
    delegate = nullptr;
    shown.surface().click({50, 50});
    EXPECT_EQ(mask->superview(), nullptr);
    EXPECT_TRUE(shown.window->isVisible());

    const auto child = make<NSWindow>();
    child->setContentView(mask);
    shown.window->addChildWindow(child, NSWindowOrderingMode::Above);
    mask->dismiss();
    EXPECT_EQ(child->contentView(), nullptr);
    EXPECT_EQ(children(), 1U);
}

TEST_F(Mask, ItsDelegateMayDoAnything) {
    const auto delegate = std::make_shared<Delegate>();
    const std::function<void(KXMaskView&)> reactions[] = {
        [](KXMaskView& mask) { mask.show(); },
        [&](KXMaskView& mask) {
            if (delegate->calls < 5) mask.dismiss();
        },
        [&](KXMaskView&) { shown.window->close(); },
    };
    for (const auto& react : reactions) {
        delegate->react = react;
        auto mask = make<KXMaskView>();
        mask->setDelegate(delegate);
        mask->show();
        mask = nullptr;
        shown.surface().click({5, 5});
        delegate->react = nullptr;
        while (children() > 0) shown.window->removeChildWindow(shown.window->childWindows().back());
    }
    EXPECT_FALSE(shown.window->isVisible());
}

}  // namespace
}  // namespace kx
