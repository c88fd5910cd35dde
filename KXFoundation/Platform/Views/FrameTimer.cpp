// SPDX-License-Identifier: MIT

#include <algorithm>
#include <chrono>

#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/Platform/Views/FrameTimer.h>

namespace kx {

namespace {

constexpr std::chrono::nanoseconds kFrame{1'000'000'000 / 60};

}  // namespace

/// The list lives as long as the timer that will look at it: who replaces the clock loses both.
void FrameTimer::didDraw(const std::shared_ptr<CALayer>& layer) {
    static constinit ProcessState<std::weak_ptr<State>> waiting;
    auto state = waiting.get().lock();
    if (!state || state->isDue) {
        state = std::make_shared<State>();
        waiting.get() = state;
        Clock& clock = Clock::slot().current();
        clock.runAt(clock.now() + kFrame, TimerThread::Main, [state] { showNextFrames(*state); });
    }
    const auto isSame = [&](const auto& known) {
        return !known.owner_before(layer) && !layer.owner_before(known);
    };
    if (std::ranges::none_of(state->layers, isSame)) state->layers.push_back(layer);
}

void FrameTimer::showNextFrames(State& state) {
    state.isDue = true;
    for (const auto& known : state.layers) {
        if (const auto layer = known.lock()) layer->showNextFrame();
    }
}

}  // namespace kx
