// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cerrno>
#include <cstdlib>
#include <utility>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSURLSession.h>
#include <KXFoundation/Platform/Runtime/OperationQueue.h>

namespace kx {

namespace {

/// Loads wait for the world: more of them at a time would keep the pool's threads from other work.
constexpr std::size_t kMostAtATime = 2;

OperationQueue& queue() {
    static auto& shared = *new OperationQueue("kx.url-session", kMostAtATime);
    return shared;
}

/// The tasks under way. The exit of the process ends them: it waits for the pool's threads, and TLS must not
/// outlive the library that it stands on.
class RunningTasks {
  public:
    static RunningTasks& shared() {
        static auto& tasks = *new RunningTasks;
        return tasks;
    }

    void add(const std::shared_ptr<NSURLSessionTask>& task) {
        // Registered on a thread of the pool, so after the pool's own: those registered last run first.
        static const int registered = std::atexit([] { shared().cancelAll(); });
        static_cast<void>(registered);
        MutexLock lock(mutex_);
        tasks_.push_back(task);
        const bool isTooLate = isExiting_;
        lock.unlock();
        if (isTooLate) task->cancel();
    }
    void remove(const std::shared_ptr<NSURLSessionTask>& task) {
        const MutexLock lock(mutex_);
        std::erase(tasks_, task);
    }

  private:
    void cancelAll() {
        std::vector<std::shared_ptr<NSURLSessionTask>> tasks;
        {
            const MutexLock lock(mutex_);
            isExiting_ = true;
            tasks = tasks_;
        }
        for (const auto& task : tasks) task->cancel();
    }

    Mutex mutex_;
    std::vector<std::shared_ptr<NSURLSessionTask>> tasks_ KX_GUARDED_BY(mutex_);
    bool isExiting_ KX_GUARDED_BY(mutex_) = false;
};

Error cancelled() {
    return Error::fromErrno(ECANCELED, "URL session");
}

}  // namespace

bool NSURLSessionTask::init(std::optional<NSURL> address, Completion completion) {
    address_ = std::move(address);
    completion_ = std::move(completion);
    loader_ = URLLoader::slot().shared();
    return Super::init();
}

void NSURLSessionTask::resume() {
    const MutexLock lock(mutex_);
    if (std::exchange(isStarted_, true)) return;
    number_ = queue().addOperation([task = self()] {
        RunningTasks::shared().add(task);
        task->perform();
        RunningTasks::shared().remove(task);
    });
}

void NSURLSessionTask::cancel() {
    MutexLock lock(mutex_);
    isCancelled_ = true;
    if (loading_) loading_->cancel();
    const bool waits = !std::exchange(isStarted_, true) || queue().cancelOperation(number_);
    lock.unlock();
    // One that waits for its turn ends without it.
    if (waits) DispatchQueue::shared().async([task = self()] { task->perform(); });
}

Result<URLAnswer> NSURLSessionTask::load() {
    {
        const MutexLock lock(mutex_);
        if (isCancelled_) return cancelled();
    }
    if (!address_ || !address_->hasScheme("https")) return Error{ErrorKind::Unsupported, 0, "URL session"};
    const auto loading = loader_->open(address_->absoluteString());
    return loading ? runLoading(**loading) : loading.error();
}

Result<URLAnswer> NSURLSessionTask::runLoading(URLLoading& loading) {
    {
        const MutexLock lock(mutex_);
        if (isCancelled_) return cancelled();
        loading_ = &loading;
    }
    auto answer = loading.run();
    const MutexLock lock(mutex_);
    loading_ = nullptr;
    return answer;
}

void NSURLSessionTask::perform() {
    const auto answer = load();
    const Completion completion = std::exchange(completion_, nullptr);
    if (completion) completion(answer);
}

std::shared_ptr<NSURLSessionTask> NSURLSession::dataTaskWithURL(std::optional<NSURL> address,
                                                                NSURLSessionTask::Completion completion) {
    return make<NSURLSessionTask>(std::move(address), std::move(completion));
}

}  // namespace kx
