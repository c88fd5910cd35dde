// SPDX-License-Identifier: MIT

#include <algorithm>
#include <exception>
#include <limits>

#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Runtime/Clock.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/MainThread.h>

namespace kx {

namespace {

/// One block that the calling thread is running.
class Frame {
  public:
    enum class Under : std::uint8_t { Caller, Executor };
    Frame(const DispatchQueue& queue, Under under) noexcept
        : queue_(&queue),
          outer_(under == Under::Caller ? top_ : nullptr),
          former_(std::exchange(top_, this)) {}
    ~Frame() { top_ = former_; }
    Frame(const Frame&) = delete;
    Frame& operator=(const Frame&) = delete;

    static const DispatchQueue* topQueue() noexcept { return top_ ? top_->queue_ : nullptr; }
    static bool holds(const DispatchQueue& queue) noexcept {
        const Frame* frame = top_;
        while (frame && frame->queue_ != &queue) frame = frame->outer_;
        return frame != nullptr;
    }

  private:
    static thread_local constinit const Frame* top_;
    const DispatchQueue* queue_;
    const Frame* outer_;  // the block that waits for this one
    const Frame*
        former_;  // what the thread goes back to; an executor may run a block while another one waits
};

constinit thread_local const Frame* Frame::top_ = nullptr;

Executor& executor() {
    return Executor::slot().current();
}

std::chrono::nanoseconds later(std::chrono::nanoseconds delay) {
    const auto now = Clock::slot().current().now();
    return now + std::clamp(delay, std::chrono::nanoseconds(0), std::chrono::nanoseconds::max() - now);
}

}  // namespace

DispatchQueue::DispatchQueue(Private, std::string_view label, std::size_t width, Thread thread)
    : label_(label), width_(std::max<std::size_t>(width, 1)), thread_(thread) {}

std::shared_ptr<DispatchQueue> DispatchQueue::withWidth(std::string_view label, std::size_t width,
                                                        Thread thread) {
    return std::make_shared<DispatchQueue>(Private(), label, width, thread);
}

DispatchQueue& DispatchQueue::main() {
    static auto& queue = *new std::shared_ptr<DispatchQueue>(withWidth("main", 1, Thread::Main));
    return *queue;
}

DispatchQueue& DispatchQueue::shared() {
    static auto& queue =
        *new std::shared_ptr<DispatchQueue>(withWidth("background", kUnlimited, Thread::Background));
    return *queue;
}

std::shared_ptr<DispatchQueue> DispatchQueue::serial(std::string_view label) {
    return withWidth(label, 1, Thread::Background);
}

std::string_view DispatchQueue::currentQueueLabel() noexcept {
    if (const DispatchQueue* queue = Frame::topQueue()) return queue->label();
    return isMainThread() ? std::string_view(main().label()) : std::string_view();
}

bool DispatchQueue::isCurrent() const noexcept {
    return Frame::holds(*this) || (thread_ == Thread::Main && isMainThread());
}

void DispatchQueue::after(std::chrono::nanoseconds delay, Block block) {
    const TimerThread thread = thread_ == Thread::Main ? TimerThread::Main : TimerThread::Background;
    Clock::slot().current().runAt(
        later(delay), thread,
        [self = shared_from_this(), block = std::move(block)]() mutable { self->async(std::move(block)); });
}

std::string DispatchQueue::describe() const {
    const MutexLock lock(mutex_);
    const std::string width = width_ == kUnlimited ? "unlimited" : std::to_string(width_);
    return "queue " + label_ + ": width " + width + ", " + std::to_string(pending_.size()) + " waiting, " +
           std::to_string(running_) + " running";
}

std::uint64_t DispatchQueue::submit(Block block) {
    MutexLock lock(mutex_);
    const std::uint64_t number = ++lastNumber_;
    pending_.push_back({number, std::move(block), nullptr});
    if (slots_ == width_) return number;
    ++slots_;
    lock.unlock();
    giveToExecutor();
    return number;
}

bool DispatchQueue::cancel(std::uint64_t number) {
    Entry cancelled;
    const MutexLock lock(mutex_);
    const auto found = std::ranges::find(pending_, number, &Entry::number);
    if (found == pending_.end()) return false;
    cancelled = std::move(*found);
    pending_.erase(found);
    return true;
}

void DispatchQueue::waitUntilIdle() {
    if (isCurrent()) return callerError("queue " + label_ + ": waited for from one of its own blocks");
    const MutexLock lock(mutex_);
    while (slots_ > 0 || !pending_.empty()) executor().wait(mutex_, changed_);
}

std::size_t DispatchQueue::unfinished() const {
    const MutexLock lock(mutex_);
    return pending_.size() + running_;
}

void DispatchQueue::runAndWait(const Block& block) {
    if (isCurrent()) return callerError("queue " + label_ + ": sync called on the queue itself");
    if (thread_ == Thread::Main) return runAndWaitOnMain(block);
    const auto held = shared_from_this();  // the block may drop the last reference
    struct Turn {
        explicit Turn(DispatchQueue& q) : queue(q) { queue.waitForTurn(); }
        ~Turn() { queue.finishOne(); }
        Turn(const Turn&) = delete;
        Turn& operator=(const Turn&) = delete;
        DispatchQueue& queue;
    };
    const Turn turn(*this);
    const Frame frame(*this, Frame::Under::Caller);
    block();
}

void DispatchQueue::runAndWaitOnMain(const Block& block) {
    Mutex mutex;
    WaitPoint ended;
    bool done = false;
    std::exception_ptr thrown;
    async([&] {
        try {
            block();
        } catch (...) {
            thrown = std::current_exception();
        }
        const MutexLock lock(mutex);  // the waiter must not leave before this is over
        done = true;
        executor().wake(ended);
    });
    {
        const MutexLock lock(mutex);
        while (!done) executor().wait(mutex, ended);
    }
    if (thrown) std::rethrow_exception(thrown);
}

/// Takes a slot for a synchronous caller, in its turn.
void DispatchQueue::waitForTurn() {
    const MutexLock lock(mutex_);
    if (slots_ < width_ && (pending_.empty() || width_ == kUnlimited)) {
        ++slots_;
        ++running_;
        return;
    }
    bool isTurn = false;
    pending_.push_back({++lastNumber_, nullptr, &isTurn});
    while (!isTurn) executor().wait(mutex_, changed_);
}

/// What the executor runs: the first block that waits, if it is still there, under the slot it came with.
void DispatchQueue::runNext() {
    MutexLock lock(mutex_);
    if (pending_.empty()) {  // cancelled
        --slots_;
        executor().wake(changed_);
        return;
    }
    const std::size_t choices = std::min(pending_.size(), width_ - running_);
    const auto chosen = pending_.begin() + static_cast<std::ptrdiff_t>(executor().choose(choices));
    Entry entry = std::move(*chosen);
    pending_.erase(chosen);
    ++running_;
    if (entry.turnOfWaiter) {
        *entry.turnOfWaiter = true;
        executor().wake(changed_);
        return;
    }
    lock.unlock();
    {
        const Frame frame(*this, Frame::Under::Executor);
        entry.block();
        entry.block = nullptr;
    }
    finishOne();
}

void DispatchQueue::finishOne() {
    MutexLock lock(mutex_);
    --running_;
    // Blocks that have a slot of their own but have not begun need none of this one.
    const bool isNeeded = pending_.size() > slots_ - running_ - 1;
    if (!isNeeded) --slots_;
    executor().wake(changed_);
    lock.unlock();
    if (isNeeded) giveToExecutor();
}

void DispatchQueue::giveToExecutor() {
    Executor::Job job = [self = shared_from_this()] { self->runNext(); };
    if (thread_ == Thread::Main) {
        executor().runOnMain(std::move(job));
    } else {
        executor().runInBackground(std::move(job));
    }
}

}  // namespace kx
