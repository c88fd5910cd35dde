// SPDX-License-Identifier: MIT

#include <algorithm>
#include <atomic>
#include <mutex>
#include <utility>

#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>
#include <KXFoundation/Platform/Foundation/NSNotificationNames.h>
#include <KXFoundation/Platform/Runtime/EventLoop.h>
#include <KXFoundation/Platform/Runtime/MainThread.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Platform/Views/BeforeDisplay.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

namespace kx {

namespace {

struct ApplicationState {
    std::once_flag once;
    std::shared_ptr<NSApplication> application;
    std::atomic<bool> isMade{false};
};

constinit ProcessState<ApplicationState> applicationState;

}  // namespace

std::shared_ptr<NSApplication> NSApplication::sharedApplication() {
    ApplicationState& state = applicationState.get();
    std::call_once(state.once, [&] {
        adoptMainThread();
        state.isMade = true;
        state.application = make<NSApplication>();
    });
    return state.application;
}

bool NSApplication::isMainThread() noexcept {
    return !applicationState.get().isMade.load(std::memory_order_relaxed) || kx::isMainThread();
}

bool NSApplication::init() {
    beforeWait_ = EventLoop::main().addBeforeWait([this] {
        wakesLoop_ = false;  // what drawing asks for takes another turn
        wasActive_ = isActive();
        displayIfNeeded();
    });
    return Super::init();
}

NSApplication::~NSApplication() {
    EventLoop::main().removeBeforeWait(beforeWait_);
}

void NSApplication::run() {
    if (windows_.empty()) return;
    const bool isNested = std::exchange(running_, true);
    EventLoop::main().run();
    running_ = isNested;
    if (isNested && windows_.empty()) stop();
}

void NSApplication::stop() {
    EventLoop::main().stop();
}

/// Of two windows the desktop may tell the gain before the loss or after it, in one turn of the loop: the
/// application stays active.
void NSApplication::focusChanged(const std::shared_ptr<NSWindow>& window, bool focused) {
    if (!focused) {
        if (focusedWindow_.lock() == window) focusedWindow_.reset();
        return;
    }
    focusedWindow_ = window;
    makeKey(window);
    if (std::exchange(wasActive_, true)) return;
    NSNotificationCenter::defaultCenter().postNotificationName(NSApplicationWillBecomeActiveNotification,
                                                               self());
}

/// A loop of the application's own learns from the descriptor that there is something to lay out or draw. A
/// turn draws before it runs its blocks: one that runs in the turn that asked for it asks for another.
void NSApplication::wakeLoop() {
    if (std::exchange(wakesLoop_, true)) return;
    EventLoop::main().perform([weak = std::weak_ptr(self())] {
        const auto application = weak.lock();
        if (application && std::exchange(application->wakesLoop_, false)) application->wakeLoop();
    });
}

void NSApplication::displayIfNeeded() {
    runBeforeDisplay();
    const auto windows = windows_;
    for (const auto& window : windows) window->displayIfNeeded();
}

void NSApplication::bringToFront(const std::shared_ptr<NSWindow>& window) {
    std::erase(windows_, window);
    const auto isAbove = [&](const auto& other) { return other->level() > window->level(); };
    windows_.insert(std::ranges::find_if(windows_, isAbove), window);
}

void NSApplication::makeKey(const std::shared_ptr<NSWindow>& window) {
    if (!shows(*window)) return;
    keyWindow_ = window;
    mainWindow_ = window;
}

void NSApplication::takeAway(const NSWindow& window) {
    std::erase_if(windows_, [&](const auto& shown) { return shown.get() == &window; });
    const auto isLost = [&](const auto& role) { return role.get() == &window; };
    const auto front = windows_.empty() ? nullptr : windows_.back();
    if (isLost(keyWindow())) keyWindow_ = front;
    if (isLost(mainWindow())) mainWindow_ = front;
    if (isLost(focusedWindow_.lock())) focusedWindow_.reset();
    if (windows_.empty() && running_) stop();
}

bool NSApplication::shows(const NSWindow& window) const {
    return std::ranges::any_of(windows_, [&](const auto& shown) { return shown.get() == &window; });
}

}  // namespace kx
