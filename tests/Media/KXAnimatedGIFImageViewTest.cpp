// SPDX-License-Identifier: MIT

#include <chrono>
#include <cmath>
#include <concepts>
#include <map>

#include <KXFoundation/Media/AnimationTimeline.h>
#include <KXFoundation/Media/KXAnimatedGIFImageView.h>
#include <KXFoundation/Media/NSImage_LoopCount.h>
#include <KXFoundation/Platform/Runtime/Executor.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/ManualClock.h>

#include "../Platform/Views/ViewFixture.h"
#include "GIFFixture.h"

namespace kx {
namespace {

using namespace std::chrono_literals;
using testing::colouredGIF;

TEST(AnimationTimeline, Places) {
    const float delays[] = {0.05F, 0.05F, 0.2F}, odd[] = {0, -1, 1e9F}, one[] = {0.05F};
    const AnimationTimeline endless(delays, 0), twice(delays, 2), unusual(odd, -1), single(one, 0),
        empty({}, 3);
    using Index = std::size_t;
    const std::tuple<const AnimationTimeline&, std::chrono::milliseconds, Index, Index, int> rows[] = {
        // -1: none left
        {endless, 0ms, 0, 1, 50},   {endless, 49ms, 0, 1, 1},   {endless, 50ms, 1, 2, 50},
        {endless, 299ms, 2, 0, 1},  {endless, 300ms, 0, 1, 50}, {endless, 300'000'120ms, 2, 0, 180},
        {twice, 299ms, 2, 0, 1},    {twice, 350ms, 1, 2, 50},   {twice, 599ms, 2, 2, -1},
        {twice, 600ms, 2, 2, -1},   {twice, 9'999ms, 2, 2, -1}, {endless, -5ms, 0, 1, 50},
        {unusual, 150ms, 1, 2, 50}, {single, 70ms, 0, 0, -1},   {empty, 70ms, 0, 0, -1},
    };
    for (const auto& [timeline, played, frame, next, left] : rows) {
        const AnimationTimeline::Place place = timeline.at(played);
        EXPECT_EQ(place.frame, frame) << played.count();
        EXPECT_EQ(place.next, next) << played.count();
        EXPECT_EQ(place.left ? *place.left / 1ms : -1, left) << played.count();
    }
    EXPECT_EQ(endless.startOf(2), 100ms);
}

/// Moves first and runs what has become due afterwards, as a busy main thread does.
class LateClock final : public Clock {
  public:
    std::chrono::nanoseconds now() const noexcept override { return now_; }
    WallTime wallTime() const noexcept override { return {}; }
    void runAt(std::chrono::nanoseconds deadline, TimerThread, std::function<void()> action) override {
        timers_.emplace(deadline, std::move(action));
    }
    void jump(std::chrono::nanoseconds step) {
        now_ += step;
        while (!timers_.empty() && timers_.begin()->first <= now_) {
            const auto action = std::move(timers_.begin()->second);
            timers_.erase(timers_.begin());
            action();
        }
    }

  private:
    std::chrono::nanoseconds now_ = 1h;
    std::multimap<std::chrono::nanoseconds, std::function<void()>> timers_;
};

template <class C>
struct Playing {
    std::shared_ptr<C> clock = std::make_shared<C>();
    testing::TemporaryDirectory directory;
    ScopedPort<Clock> clockScope{clock};
    testing::OffscreenWindow window{{100, 100}};
    std::shared_ptr<KXAnimatedGIFImageView> view = make<KXAnimatedGIFImageView>(NSRect(0, 0, 50, 50));

    Playing() { window.content().addSubview(view); }
    ~Playing() { drainQueues(); }

    void show(const std::vector<std::uint8_t>& gif) {
        view->setGIFPath(testing::write(directory, "shown.gif", gif));
        drainQueues();
    }
    [[nodiscard]] int shown() const { return testing::frameOf(view->image()); }
    int after(std::chrono::milliseconds time) requires std::same_as<C, testing::ManualClock> {
        clock->advance(time);
        EXPECT_EQ(shown(), static_cast<int>(view->currentFrame()));
        return shown();
    }
};

TEST(KXAnimatedGIFImageView, PlaysOnTheClockAsOftenAsTheFileSays) {
    Playing<testing::ManualClock> play;
    play.show(colouredGIF({5, 5, 20}, 2));
    EXPECT_EQ(play.view->frameCount(), 3U);
    EXPECT_EQ(play.view->loopCount(), 2);
    EXPECT_EQ(play.shown(), 0);
    const std::pair<std::chrono::milliseconds, int> steps[] = {{49ms, 0}, {1ms, 1},   {50ms, 2}, {199ms, 2},
                                                               {1ms, 0},  {120ms, 2}, {179ms, 2}};
    for (const auto& [time, frame] : steps) EXPECT_EQ(play.after(time), frame);
    EXPECT_EQ(play.clock->pendingTimers(), 0U) << "it rests on the last frame";
    EXPECT_EQ(play.after(10s), 2);
    play.view->seekToFrame(1);
    EXPECT_EQ(play.shown(), 1);
    EXPECT_EQ(play.after(50ms), 2) << "it plays again from there";
}

TEST(KXAnimatedGIFImageView, FramesWithoutADurationShareThatOfTheWhole) {
    Playing<testing::ManualClock> play;
    KXGIFImageView::kx_animatedGIFWithData(testing::dataOf(colouredGIF({5, 5})), [&](const auto& image) {
        for (const auto& frame : *NSImage_LoopCount::images(image)) NSImage_LoopCount::setDuration(frame, 0);
        NSImage_LoopCount::setDuration(image, 4);
        play.view->renderImageViewWithImg(image);
    });
    drainQueues();
    EXPECT_EQ(play.after(1999ms), 0);
    EXPECT_EQ(play.after(1ms), 1);
}

TEST(KXAnimatedGIFImageView, LeavesLateFramesOutAndDoesNotDrift) {
    Playing<LateClock> play;
    play.show(colouredGIF({10, 10, 10, 10, 10}));
    const std::pair<std::chrono::milliseconds, int> steps[] = {
        {103ms, 1}, {250ms, 3}, {46ms, 3}, {1ms, 4}, {1'000'100ms, 0}, {99ms, 0}, {1ms, 1}};
    for (const auto& [time, frame] : steps) {
        play.clock->jump(time);
        EXPECT_EQ(play.shown(), frame) << time.count();
    }
}

TEST(KXAnimatedGIFImageView, PausesSeeksAndChangesSpeed) {
    Playing<testing::ManualClock> play;
    play.show(colouredGIF({10, 10, 10, 10}));
    play.after(150ms);
    play.view->pause();
    play.clock->advance(10s);
    EXPECT_EQ(play.shown(), 1);
    EXPECT_EQ(play.clock->pendingTimers(), 0U);
    play.view->play();
    EXPECT_EQ(play.after(49ms), 1);
    EXPECT_EQ(play.after(1ms), 2);
    play.view->setSpeed(2);
    EXPECT_EQ(play.after(50ms), 3);
    play.view->setSpeed(0.5);
    EXPECT_EQ(play.after(199ms), 3);
    EXPECT_EQ(play.after(1ms), 0);
    play.view->pause();
    play.view->seekToFrame(99);
    EXPECT_EQ(play.shown(), 3);

    const testing::LenientMode lenient;
    const testing::CapturedLog log;
    play.view->setSpeed(0);
    play.view->setSpeed(std::nan(""));
    EXPECT_EQ(play.view->speed(), 0.5);
    EXPECT_EQ(log.lines().size(), 2U);
}

TEST(KXAnimatedGIFImageView, StandsStillWhileNobodySeesIt) {
    Playing<testing::ManualClock> play;
    play.show(colouredGIF({10, 10, 10, 10}));
    const auto window = play.window.window, parent = make<NSWindow>();
    const auto content = window->contentView();
    const auto minimise = [&](bool is) { play.window.surface().send(SurfaceMiniaturized{is}); };
    const auto putIntoParent = [&] { parent->addChildWindow(window, NSWindowOrderingMode::Above); };
    using Action = std::function<void()>;
    const std::tuple<const char*, Action, Action> rows[] = {
        {"hidden", [&] { play.view->setHidden(true); }, [&] { play.view->setHidden(false); }},
        {"inside a hidden view", [&] { content->setHidden(true); }, [&] { content->setHidden(false); }},
        {"outside", [&] { play.view->removeFromSuperview(); }, [&] { content->addSubview(play.view); }},
        {"window closed", [&] { window->orderOut(); }, [&] { window->orderFront(); }},
        {"window minimised", [&] { minimise(true); }, [&] { minimise(false); }},
        {"window put into one that is not shown", putIntoParent, [&] { parent->orderFront(); }},
        {"window taken out of the other", [&] { parent->removeChildWindow(window); }, putIntoParent},
        {"the other window closed", [&] { parent->orderOut(); }, [&] { parent->orderFront(); }},
    };
    for (const auto& [what, hide, show] : rows) {
        play.view->seekToFrame(0);
        play.clock->advance(150ms);
        hide();
        play.clock->advance(1s);
        EXPECT_EQ(play.shown(), 1) << what;
        EXPECT_EQ(play.clock->pendingTimers(), 0U) << what;
        EXPECT_TRUE(play.view->isPlaying()) << what;
        show();
        EXPECT_EQ(play.after(49ms), 1) << what;
        EXPECT_EQ(play.after(1ms), 2) << what;
    }
    play.view->setImage(nullptr);
    play.clock->advance(1s);
    EXPECT_EQ(play.shown(), -1);
    EXPECT_EQ(play.view->frameCount(), 0U);
    EXPECT_EQ(play.clock->pendingTimers(), 0U);
}

TEST(KXAnimatedGIFImageView, PlaysStreamedFilesTheSame) {
    Playing<testing::ManualClock> play;
    play.show(colouredGIF(std::vector<std::uint16_t>(14, 10), 1, 700));
    for (int frame = 0; frame < 13; ++frame) {
        EXPECT_EQ(play.shown(), frame);
        play.clock->advance(100ms);
    }
    EXPECT_EQ(play.shown(), 13);
    EXPECT_EQ(play.clock->pendingTimers(), 0U);
    play.view->seekToFrame(9);
    play.view->seekToFrame(4);
    drainQueues();
    EXPECT_EQ(play.shown(), 4);
    EXPECT_EQ(play.after(120ms), 5);
    play.view->pause();
    drainQueues();
    EXPECT_EQ(play.shown(), 5) << "what was decoded ahead waits";
}

TEST(KXAnimatedGIFImageView, LeavesLateStreamedFramesOut) {
    Playing<LateClock> play;
    play.show(colouredGIF(std::vector<std::uint16_t>(14, 10), 1, 700));
    drainQueues();
    play.clock->jump(450ms);
    drainQueues();
    EXPECT_EQ(play.shown(), 4);
    play.clock->jump(50ms);
    EXPECT_EQ(play.shown(), 5) << "decoded ahead, shown without waiting";
}

}  // namespace
}  // namespace kx
