// SPDX-License-Identifier: MIT

#include <cmath>
#include <thread>

#include <malloc.h>

#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Views/NSImageView.h>
#include <KXFoundation/Platform/Views/NSLayoutConstraint.h>
#include <KXFoundation/Platform/Views/NSTextView.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/CountedMemory.h>
#include <KXFoundation/UI/KXToastView.h>

#include "UI/TimedWindow.h"

namespace kx {
namespace {

using Toast = testing::TimedWindow;

/// Calls back from its hooks.
class HookedToast : public Subclass<HookedToast, KXToastView> {
  public:
    void willPresentToastView() override {
        Super::willPresentToastView();
        call(willPresent);
    }
    void willDismissToastView() override {
        Super::willDismissToastView();
        call(willDismiss);
    }
    void didDismissToastView() override {
        ++removals;
        call(didDismiss);
    }
    void layout() override { ++solutions; }

    std::function<void(HookedToast&)> willPresent, willDismiss, didDismiss;
    int removals = 0;
    int solutions = 0;  // of its constraints; one comes with each layout

  private:
    void call(const std::function<void(HookedToast&)>& hook) {
        const auto held = hook;
        if (held) held(*this);
    }
};

std::shared_ptr<HookedToast> hooked() {
    return make<HookedToast>("Saved", nullptr);
}

void clearAll() {
    NSNotificationCenter::defaultCenter().postNotificationName(
        KXToastViewShouldDismissWithoutAnimationNotification);
}

TEST_F(Toast, StaysForItsTimeAndLeavesNothing) {
    const std::pair<double, double> rows[] = {{0, 40}, {0.3, 40}, {0.5, 0.5}, {3, 3}, {-1, 40}, {NAN, 40}};
    for (const auto& [timeout, stays] : rows) {
        auto toast = KXToastView::initWithTitle("Saved", nullptr);
        toast->showWithTimeout(timeout);
        const std::weak_ptr<KXToastView> watched = std::exchange(toast, nullptr);
        pass(stays - 0.001);
        EXPECT_EQ(children(), 1U) << "timeout " << timeout;
        EXPECT_FALSE(watched.expired()) << "timeout " << timeout;
        pass(0.001);
        EXPECT_EQ(children(), 0U) << "timeout " << timeout;
        EXPECT_TRUE(watched.expired()) << "timeout " << timeout;
    }
}

TEST_F(Toast, LaysOutItsCardAndFollowsTheWindow) {
    const auto toast = KXToastView::initWithTitle("A text that is long enough to need two lines or more",
                                                  NSImage::initWithSize({30, 20}));
    toast->show();
    shown.window->displayIfNeeded();
    const double text = toast->titleLbl()->fittingSize().height;
    EXPECT_GT(text, 20);
    EXPECT_EQ(toast->indicatorView()->frame(), NSRect(102.5, 0, 30, 20));
    EXPECT_EQ(toast->titleLbl()->frame(), NSRect(6, 20, 223, text));
    const NSSize card{235, 20 + text + 16};
    for (const NSSize size : {NSSize{640, 480}, NSSize{300, 200}}) {
        shown.window->setFrame({{}, size});
        shown.window->displayIfNeeded();
        EXPECT_EQ(toast->contentView()->frame(),
                  NSRect({(size.width - card.width) / 2, (size.height - card.height) / 2}, card));
    }
    toast->titleLabelHeightConstraint()->setConstant(90);
    toast->layoutSubtreeIfNeeded();
    EXPECT_EQ(toast->contentView()->frame().size.height, 90);
}

TEST_F(Toast, AResizeIsOneSolutionAndAsksForNoMemory) {
    const auto toast = hooked();
    const auto resize = [&](double width) {
        toast->setFrame({0, 0, width, 480});
        toast->layoutSubtreeIfNeeded();
    };
    resize(500);
    const int before = toast->solutions;
    EXPECT_EQ(testing::allocationsOf([&] { resize(700); }), 0U);
    EXPECT_EQ(toast->solutions - before, 1);
    EXPECT_EQ(toast->contentView()->frame().origin.x, (700 - 235) / 2.0);
}

TEST_F(Toast, OnePostClearsThoseThatListen) {
    const auto visible = hooked();
    const auto hidden = hooked();
    const auto dismissed = hooked();
    const auto transparent = hooked();
    visible->show();
    visible->show();
    transparent->setAlphaValue(0);
    int completed = 0;
    for (const auto& toast : {dismissed, transparent}) {
        toast->show();
        toast->dismissWithCompleteBlock([&] { ++completed; });
    }
    EXPECT_EQ(completed, 2);
    {
        const testing::LenientMode lenient;
        const testing::CapturedLog log;
        std::thread(clearAll).join();
        EXPECT_EQ(log.lines().size(), 3U) << "a line for each that listens";
        EXPECT_EQ(visible->removals, 0);
    }
    clearAll();
    clearAll();
    EXPECT_EQ(visible->removals, 1);
    EXPECT_EQ(visible->window(), nullptr);
    EXPECT_EQ(visible->indicatorView()->superview(), nullptr);
    EXPECT_EQ(hidden->removals, 1);
    EXPECT_EQ(dismissed->removals, 0) << "it has stopped listening";
    EXPECT_NE(dismissed->window(), nullptr) << "until its time is up";
    EXPECT_EQ(transparent->removals, 1) << "it was not dismissed";
}

TEST_F(Toast, AClickDismissesWhereItMay) {
    for (const bool may : {false, true}) {
        const auto toast = hooked();
        toast->setShouldDismissWhenClicked(may);
        toast->show();
        shown.window->displayIfNeeded();
        shown.surface().click({5, 5});
        EXPECT_NE(toast->window(), nullptr);
        clearAll();
        EXPECT_EQ(toast->removals, may ? 0 : 1);
        pass(40);
    }
}

TEST_F(Toast, ManyLeaveNothing) {
    std::vector<std::weak_ptr<KXToastView>> watched;
    const auto show = [&](std::size_t count) {
        watched.assign(count, {});
        for (std::size_t i = 0; i < count; ++i) {
            const auto toast = KXToastView::initWithTitle("Saved", nullptr);
            toast->showWithTimeout(1 + double(i % 3));
            watched[i] = toast;
            if (i == count / 2) clearAll();
        }
        EXPECT_EQ(children(), count);
        clearAll();
        pass(3);
        reader->clear();
    };
    show(10'000);
    // Caches fill and lists grow once; what were lost with every toast would never come to rest. What the C
    // libraries hold is known as their allocator rounds it, which differs by less than a byte for each toast.
    constexpr std::size_t kToasts = 1000;
    std::size_t before = 0, allBefore = 0;
    std::size_t held = testing::heldMemory(), allHeld = kToasts;
    for (int round = 0; round < 20 && (held != before || allHeld >= allBefore + kToasts); ++round) {
        before = held;
        allBefore = allHeld;
        show(kToasts);
        held = testing::heldMemory();
        allHeld = ::mallinfo2().uordblks;
    }
    EXPECT_EQ(held, before);
    EXPECT_LT(allHeld, allBefore + kToasts);
    EXPECT_EQ(children(), 0U);
    EXPECT_EQ(clock->pendingTimers(), 0U);
    EXPECT_TRUE(std::ranges::all_of(watched, [](const auto& toast) { return toast.expired(); }));
    EXPECT_EQ(NSApplication::sharedApplication()->windows().size(), 1U);
}

TEST_F(Toast, HooksMayDoAnything) {
    const std::function<void(HookedToast&)> hooks[] = {
        [](HookedToast&) { clearAll(); },
        [](HookedToast& toast) { toast.removeFromSuperview(); },
        [](HookedToast&) { hooked()->showWithTimeout(1); },
        [&](HookedToast& toast) {
            if (const auto window = toast.window()) window->close();
            shown.window->close();
        },
    };
    for (const auto& hook : hooks) {
        shown.window->makeKeyAndOrderFront();
        for (auto HookedToast::*place :
             {&HookedToast::willPresent, &HookedToast::willDismiss, &HookedToast::didDismiss}) {
            auto toast = hooked();
            toast.get()->*place = hook;
            toast->setShouldDismissWhenClicked(true);
            toast->showWithTimeout(2);
            if (shown.window->surface()) shown.surface().click({9, 9});
            const std::weak_ptr<HookedToast> watched = std::exchange(toast, nullptr);
            clearAll();
            pass(4);
            EXPECT_TRUE(watched.expired());
        }
    }
    EXPECT_EQ(children(), 0U);
}

TEST_F(Toast, IsReadOutWhenItIsShown) {
    const auto toast = KXToastView::initWithTitle("Saved", nullptr);
    EXPECT_TRUE(reader->heard().empty());
    toast->show();
    EXPECT_EQ(reader->heard(), std::vector<std::string>{"Saved"});
    shown.window->close();
    toast->show();
    EXPECT_EQ(reader->heard().size(), 1U) << "nobody sees it";
}

TEST_F(Toast, WithoutAKeyWindowItComesAndGoes) {
    shown.window->close();
    for (const bool isPutOnScreen : {false, true}) {
        const auto toast = KXToastView::initWithTitle(std::nullopt, nullptr);
        EXPECT_EQ(toast->frame().size, NSSize());
        toast->showWithTimeout(1);
        const std::weak_ptr<NSWindow> window = toast->window();
        ASSERT_FALSE(window.expired());
        if (isPutOnScreen) window.lock()->makeKeyAndOrderFront();
        pass(1);
        EXPECT_TRUE(window.expired());
        EXPECT_TRUE(NSApplication::sharedApplication()->windows().empty());
    }
}

TEST_F(Toast, AbsurdContentsAreShown) {
    for (const std::string& text :
         {std::string(), std::string(1 << 20, 'x'), std::string(1 << 20, ' '), std::string("\xFF\xC0")}) {
        for (const double side : {0.0, 1e12, -5.0}) {
            KXToastView::initWithTitle(text, NSImage::initWithSize({side, side}))->showWithTimeout(1);
            shown.window->displayIfNeeded();
            pass(1);
        }
    }
    EXPECT_EQ(children(), 0U);
}

}  // namespace
}  // namespace kx
