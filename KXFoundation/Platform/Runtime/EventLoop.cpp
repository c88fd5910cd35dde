// SPDX-License-Identifier: MIT

#include <algorithm>
#include <array>
#include <atomic>
#include <cerrno>
#include <deque>
#include <limits>
#include <map>
#include <span>
#include <utility>

#include <sys/epoll.h>
#include <sys/eventfd.h>
#include <sys/timerfd.h>
#include <unistd.h>

#include <KXFoundation/Platform/Runtime/EventLoop.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

namespace {

using std::chrono::nanoseconds;

nanoseconds steadyNow() {
    return std::chrono::steady_clock::now().time_since_epoch();
}

itimerspec absoluteTime(nanoseconds deadline) {
    deadline = std::max(deadline, nanoseconds(1));  // zero would disarm the timer, less is refused
    const auto seconds = std::chrono::duration_cast<std::chrono::seconds>(deadline);
    return {{}, {seconds.count(), (deadline - seconds).count()}};
}

/// Whole milliseconds, rounded up so that a wait does not end before its time.
int milliseconds(std::optional<nanoseconds> timeout) {
    if (!timeout) return -1;
    const auto whole = std::chrono::ceil<std::chrono::milliseconds>(*timeout).count();
    return static_cast<int>(std::clamp<std::int64_t>(whole, 0, std::numeric_limits<int>::max()));
}

/// epoll_wait(), gone on with after a signal's handler.
int waitFor(int poll, std::span<epoll_event> events, std::optional<nanoseconds> timeout) {
    const nanoseconds start = steadyNow();
    for (;;) {
        const auto left = timeout ? std::optional(*timeout - (steadyNow() - start)) : std::nullopt;
        const int count =
            epoll_wait(poll, events.data(), static_cast<int>(events.size()), milliseconds(left));
        if (count >= 0 || errno != EINTR) return count;
    }
}

}  // namespace

struct EventLoop::State {
    using Watched = std::shared_ptr<const Callback>;  // shared: a callback may take itself out

    int poll = epoll_create1(EPOLL_CLOEXEC);
    int wakeUp = eventfd(0, EFD_CLOEXEC | EFD_NONBLOCK);
    int timer = timerfd_create(CLOCK_MONOTONIC, TFD_CLOEXEC | TFD_NONBLOCK);

    std::map<int, Watched> watched;  // these three: main thread only
    std::map<int, Watched> beforeWait;
    int nextNumber = 0;

    Mutex mutex;
    std::deque<Callback> blocks KX_GUARDED_BY(mutex);
    std::multimap<nanoseconds, Callback> timers KX_GUARDED_BY(mutex);

    std::atomic<bool> stopping{false};
    std::atomic<bool> turned{false};

    void wake() const noexcept { static_cast<void>(eventfd_write(wakeUp, 1)); }
    bool hasBlocks() {
        const MutexLock lock(mutex);
        return !blocks.empty();
    }
    /// A wake that only ended run() must not cost the next wait a turn.
    void forgetWake() {
        const MutexLock lock(mutex);
        if (!blocks.empty()) return;
        eventfd_t ignored = 0;
        static_cast<void>(eventfd_read(wakeUp, &ignored));
    }
    bool watch(int operation, int descriptor) const noexcept {
        epoll_event event{EPOLLIN, {.fd = descriptor}};
        return epoll_ctl(poll, operation, descriptor, &event) == 0;
    }
    void armTimer() KX_REQUIRES(mutex) {
        const itimerspec time = timers.empty() ? itimerspec{} : absoluteTime(timers.begin()->first);
        timerfd_settime(timer, TFD_TIMER_ABSTIME, &time, nullptr);
    }
    void takeDueTimers() {
        const nanoseconds now = steadyNow();
        const MutexLock lock(mutex);
        const auto end = timers.upper_bound(now);
        for (auto due = timers.begin(); due != end; ++due) blocks.push_back(std::move(due->second));
        if (timers.begin() == end) return;
        timers.erase(timers.begin(), end);
        armTimer();
    }
    void callBack(int descriptor) {
        const auto found = watched.find(descriptor);
        if (found == watched.end()) return;  // an earlier callback of this turn took it out
        const Watched callback = found->second;
        (*callback)();
    }
    void prepareToWait() {
        const auto all = beforeWait;
        for (const auto& [number, callback] : all) {
            if (beforeWait.contains(number)) (*callback)();
        }
    }
};

/// Whoever polls the descriptor must learn of blocks that a turn leaves behind, also if one of them throws.
struct EventLoop::WakeForRest {
    ~WakeForRest() {
        if (state.hasBlocks()) state.wake();
    }
    State& state;
};

EventLoop& EventLoop::main() {
    static auto& loop = *new EventLoop;
    return loop;
}

EventLoop::EventLoop() : state_(std::make_unique<State>()) {
    if (!state_->watch(EPOLL_CTL_ADD, state_->wakeUp) || !state_->watch(EPOLL_CTL_ADD, state_->timer)) {
        logError("EventLoop", Error::fromErrno(errno, "epoll"));
    }
}

void EventLoop::run() {
    while (!state_->stopping.exchange(false)) turn(std::nullopt);
    state_->forgetWake();
}

void EventLoop::stop() {
    state_->stopping = true;
    state_->wake();
}

bool EventLoop::runOnce(std::optional<nanoseconds> timeout) {
    return turn(timeout);
}

bool EventLoop::drain() {
    return turn(nanoseconds(0));
}

bool EventLoop::turn(std::optional<nanoseconds> timeout) {
    state_->turned.store(true, std::memory_order_relaxed);
    state_->prepareToWait();
    if (state_->hasBlocks()) timeout = nanoseconds(0);  // their wake may have been read by an outer turn
    std::array<epoll_event, 64> events;
    const int count = waitFor(state_->poll, events, timeout);
    for (int i = 0; i < count; ++i) {
        const int descriptor = events[static_cast<std::size_t>(i)].data.fd;
        if (descriptor == state_->wakeUp) {
            eventfd_t ignored = 0;
            static_cast<void>(eventfd_read(state_->wakeUp, &ignored));
        } else if (descriptor == state_->timer) {
            state_->takeDueTimers();
        } else {
            state_->callBack(descriptor);
        }
    }
    const bool ran = performPending();
    return ran || count > 0;
}

int EventLoop::descriptor() const noexcept {
    return state_->poll;
}

bool EventLoop::addDescriptor(int descriptor, Callback callback) {
    const bool isNew = !state_->watched.contains(descriptor);
    if (isNew && !state_->watch(EPOLL_CTL_ADD, descriptor)) return false;
    state_->watched[descriptor] = std::make_shared<const Callback>(std::move(callback));
    return true;
}

void EventLoop::removeDescriptor(int descriptor) {
    if (state_->watched.erase(descriptor) != 0) state_->watch(EPOLL_CTL_DEL, descriptor);
}

int EventLoop::addBeforeWait(Callback callback) {
    state_->beforeWait[++state_->nextNumber] = std::make_shared<const Callback>(std::move(callback));
    return state_->nextNumber;
}

void EventLoop::removeBeforeWait(int number) {
    state_->beforeWait.erase(number);
}

void EventLoop::perform(Callback block) {
    MutexLock lock(state_->mutex);
    const bool wasEmpty = state_->blocks.empty();
    state_->blocks.push_back(std::move(block));
    lock.unlock();
    if (wasEmpty) state_->wake();
}

bool EventLoop::performPending() {
    const WakeForRest wakeForRest{*state_};
    MutexLock lock(state_->mutex);
    const std::size_t count = state_->blocks.size();
    // One by one, so that a loop nested in a block goes on with the next one.
    for (std::size_t left = count; left > 0 && !state_->blocks.empty(); --left) {
        Callback block = std::move(state_->blocks.front());
        state_->blocks.pop_front();
        lock.unlock();
        block();
        block = nullptr;
        lock.lock();
    }
    return count > 0;
}

void EventLoop::runAt(nanoseconds deadline, Callback block) {
    const MutexLock lock(state_->mutex);
    const auto placed = state_->timers.emplace(deadline, std::move(block));
    if (placed == state_->timers.begin()) state_->armTimer();
}

bool EventLoop::hasTurned() const noexcept {
    return state_->turned.load(std::memory_order_relaxed);
}

}  // namespace kx
