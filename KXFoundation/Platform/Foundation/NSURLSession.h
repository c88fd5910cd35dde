// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>

#include <KXFoundation/Platform/Foundation/NSURL.h>
#include <KXFoundation/Platform/Foundation/URLLoader.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

/// One loading of an address over HTTPS. It begins with resume() and ends with one call of its completion on
/// a thread of the session, never the main one. Whoever drops the task meanwhile does not end it. Any thread.
class KX_EXPORT NSURLSessionTask : public Subclass<NSURLSessionTask, NSObject> {
  public:
    /// What came: the server's answer whatever its status, or the error that kept it from coming (ECANCELED
    /// after cancel()).
    using Completion = std::function<void(const Result<URLAnswer>&)>;

    bool init(std::optional<NSURL> address, Completion completion);

    /// Starts a task that has not been started; else nothing.
    void resume();
    /// Ends the task early; one that was never started completes too. Nothing after the completion.
    void cancel();

  private:
    friend class NSURLSession;

    [[nodiscard]] Result<URLAnswer> load();
    [[nodiscard]] Result<URLAnswer> runLoading(URLLoading& loading);
    void perform();

    std::optional<NSURL> address_;
    Completion completion_;  // the session's thread's alone once the task has started
    std::shared_ptr<URLLoader> loader_;

    Mutex mutex_;
    bool isStarted_ KX_GUARDED_BY(mutex_) = false;
    bool isCancelled_ KX_GUARDED_BY(mutex_) = false;
    std::uint64_t number_ KX_GUARDED_BY(mutex_) = 0;       // in the session's queue, once it has started
    URLLoading* loading_ KX_GUARDED_BY(mutex_) = nullptr;  // while it may be cancelled
};

/// The shared session of the process: it loads up to two addresses at a time, the rest wait. What is under
/// way when the process exits is cancelled, and calls its completion while static objects are destroyed. An
/// exception that leaves a completion ends the process. Limits and proxies: see URLLoader.h.
class KX_EXPORT NSURLSession {
  public:
    NSURLSession() = delete;

    /// A task that waits for its resume(). An absent address, or one that is not HTTPS, ends it with an
    /// error.
    [[nodiscard]] static std::shared_ptr<NSURLSessionTask> dataTaskWithURL(
        std::optional<NSURL> address, NSURLSessionTask::Completion completion);
};

}  // namespace kx
