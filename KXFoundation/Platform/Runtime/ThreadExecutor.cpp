// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cstdlib>
#include <system_error>
#include <thread>
#include <utility>

#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Runtime/EventLoop.h>
#include <KXFoundation/Platform/Runtime/Log.h>
#include <KXFoundation/Platform/Runtime/MainThread.h>
#include <KXFoundation/Platform/Runtime/ThreadExecutor.h>

namespace kx {

struct ThreadExecutor::State {
    Mutex mutex;
    Condition workCame;
    Condition settled;  // a job ended, or one came for the main thread
    std::deque<Job> jobs KX_GUARDED_BY(mutex);
    std::size_t threads KX_GUARDED_BY(mutex) = 0;
    std::size_t idle KX_GUARDED_BY(mutex) = 0;     // of the threads
    std::size_t waiting KX_GUARDED_BY(mutex) = 0;  // of the threads: asleep in wait()
    std::size_t mainJobs KX_GUARDED_BY(mutex) = 0;
    bool stopped KX_GUARDED_BY(mutex) = false;

    [[nodiscard]] std::size_t working() const KX_REQUIRES(mutex) { return threads - idle - waiting; }
    void serve(const std::shared_ptr<State>& self);
    void ensureThread(const std::shared_ptr<State>& self) KX_REQUIRES(mutex);
    void startThread(const std::shared_ptr<State>& self) KX_REQUIRES(mutex);
};

namespace {

constexpr std::size_t kMostThreads = 64;

std::size_t threadsWanted() noexcept {
    static const std::size_t wanted = std::max(4U, std::thread::hardware_concurrency());
    return wanted;
}

/// The pool whose thread this is.
constinit thread_local const void* poolOfThisThread = nullptr;

void run(const Executor::Job& job) noexcept {
    job();
}  // an exception of a job ends the process, as in a thread

}  // namespace

void ThreadExecutor::State::serve(const std::shared_ptr<State>& self) {
    poolOfThisThread = self.get();
    MutexLock lock(mutex);
    while (!stopped && threads - waiting <= threadsWanted()) {
        if (jobs.empty()) {
            ++idle;
            settled.notifyAll();
            workCame.wait(mutex);
            --idle;
            continue;
        }
        Job job = std::move(jobs.front());
        jobs.pop_front();
        lock.unlock();
        run(job);
        job = nullptr;  // what it captured goes without the lock
        lock.lock();
    }
    --threads;
    if (!jobs.empty() && !stopped) ensureThread(self);
    settled.notifyAll();
}

/// Where the system gives no more threads, the job waits for one of those that there are, else for the next
/// attempt.
void ThreadExecutor::State::startThread(const std::shared_ptr<State>& self) {
    try {
        ++threads;
        std::thread([self] { self->serve(self); }).detach();
    } catch (const std::system_error& error) {
        --threads;
        logError("ThreadExecutor", Error::fromErrno(error.code().value(), "a thread for background blocks"));
    }
}

/// Sees to it that somebody takes the next job.
void ThreadExecutor::State::ensureThread(const std::shared_ptr<State>& self) {
    if (idle >= jobs.size()) {
        workCame.notifyOne();
    } else if (threads - waiting < threadsWanted() && threads < kMostThreads) {
        startThread(self);
    }
}

ThreadExecutor::ThreadExecutor() : state_(std::make_shared<State>()) {
    static const int registered = std::atexit([] {
        if (auto* pool = dynamic_cast<ThreadExecutor*>(&Executor::slot().current())) pool->stop();
    });
    static_cast<void>(registered);
}

void ThreadExecutor::runOnMain(Job job) {
    {
        const MutexLock lock(state_->mutex);
        if (state_->stopped) return;
        ++state_->mainJobs;
        state_->settled.notifyAll();
    }
    EventLoop::main().perform([state = state_, job = std::move(job)] {
        {
            const MutexLock lock(state->mutex);
            --state->mainJobs;
            if (state->stopped) return;
        }
        run(job);
    });
}

void ThreadExecutor::runInBackground(Job job) {
    const MutexLock lock(state_->mutex);
    if (state_->stopped) return;
    state_->jobs.push_back(std::move(job));
    state_->ensureThread(state_);
}

void ThreadExecutor::wait(Mutex& mutex, WaitPoint& point) {
    if (poolOfThisThread != state_.get()) return point.condition.wait(mutex);
    std::uint64_t wakesBefore = 0;
    {
        const MutexLock lock(state_->mutex);
        wakesBefore = point.wakes;
        ++point.sleepers;
        ++state_->waiting;
        if (!state_->jobs.empty()) state_->ensureThread(state_);
        state_->settled.notifyAll();
    }
    point.condition.wait(mutex);
    const MutexLock lock(state_->mutex);
    if (point.wakes != wakesBefore) return;  // wake() has counted this thread out
    --point.sleepers;
    --state_->waiting;
}

/// The sleepers count as working from here on, not from when they come to run: drain() must not miss them.
void ThreadExecutor::wake(WaitPoint& point) {
    const MutexLock lock(state_->mutex);
    ++point.wakes;
    state_->waiting -= std::exchange(point.sleepers, 0);
    point.condition.notifyAll();
}

void ThreadExecutor::drain() {
    if (poolOfThisThread == state_.get()) return callerError("drainQueues: called from a background block");
    State& state = *state_;
    const bool onMain = isMainThread();
    MutexLock lock(state.mutex);
    while (!state.jobs.empty() || state.working() > 0 || (onMain && state.mainJobs > 0)) {
        if (onMain && state.mainJobs > 0) {
            lock.unlock();
            EventLoop::main().performPending();
            lock.lock();
        } else {
            state.settled.wait(state.mutex);
        }
    }
}

bool ThreadExecutor::hasEnded() const {
    const MutexLock lock(state_->mutex);
    return state_->stopped;
}

void ThreadExecutor::stop() {
    std::deque<Job> dropped;
    MutexLock lock(state_->mutex);
    state_->stopped = true;
    dropped.swap(state_->jobs);
    const std::size_t self =
        poolOfThisThread == state_.get() ? 1 : 0;  // a background block that ends the process
    while (state_->threads > state_->waiting + self) {
        state_->workCame.notifyAll();
        state_->settled.wait(state_->mutex);
    }
}

}  // namespace kx
