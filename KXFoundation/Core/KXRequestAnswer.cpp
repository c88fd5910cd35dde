// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Core/KXRequestAnswer.h>
#include <KXFoundation/Platform/Runtime/DispatchQueue.h>
#include <KXFoundation/Platform/Runtime/Mutex.h>

namespace kx {

/// The coroutine that waits, and its outcome. The answer may come on any thread.
class KXRequestAnswer::Waiting {
  public:
    explicit Waiting(std::coroutine_handle<> coroutine) : coroutine_(coroutine) {}

    void setOutcome(KXRequestOutcome outcome) {
        const MutexLock lock(mutex_);
        outcome_ = std::move(outcome);
    }
    [[nodiscard]] std::optional<KXRequestOutcome> takeOutcome() {
        const MutexLock lock(mutex_);
        return std::exchange(outcome_, std::nullopt);
    }
    /// The coroutine is gone, or goes on without this.
    void forget() { static_cast<void>(take()); }
    void resume() {
        if (const auto coroutine = take()) coroutine.resume();
    }

  private:
    std::coroutine_handle<> take() {
        const MutexLock lock(mutex_);
        return std::exchange(coroutine_, nullptr);
    }

    Mutex mutex_;
    std::coroutine_handle<> coroutine_ KX_GUARDED_BY(mutex_);
    std::optional<KXRequestOutcome> outcome_ KX_GUARDED_BY(mutex_);
};

/// Resumes the coroutine when it is kept or, at the latest, when nobody holds it any more: a request that is
/// cleaned, replaced or destroyed drops its callback, and the promise with it.
class KXRequestAnswer::Promise {
  public:
    explicit Promise(std::shared_ptr<Waiting> waiting) : waiting_(std::move(waiting)) {}
    ~Promise() { goOn(); }
    Promise(const Promise&) = delete;
    Promise& operator=(const Promise&) = delete;

    void keep(KXRequestOutcome outcome) {
        if (waiting_) waiting_->setOutcome(std::move(outcome));
        goOn();
    }
    void goOn() {
        if (auto waiting = std::exchange(waiting_, nullptr))
            DispatchQueue::main().async([waiting = std::move(waiting)] { waiting->resume(); });
    }

  private:
    std::shared_ptr<Waiting> waiting_;
};

KXRequestAnswer KXRequest::answer(Method method) {
    return {self(), std::move(method)};
}

KXRequestAnswer::KXRequestAnswer(std::weak_ptr<KXRequest> request, KXRequest::Method method)
    : request_(std::move(request)), method_(std::move(method)) {}

KXRequestAnswer::~KXRequestAnswer() {
    if (waiting_) waiting_->forget();
}

void KXRequestAnswer::await_suspend(std::coroutine_handle<> coroutine) {
    // The coroutine may go on, and this object be gone, as soon as the promise is let go of.
    waiting_ = std::make_shared<Waiting>(coroutine);
    const auto waiting = waiting_;
    const auto method = std::move(method_);
    const auto promise = std::make_shared<Promise>(waiting);
    const auto request = request_.lock();
    if (!request || request->identifier() >= 1) return;
    const auto deliver = [promise, asked = request.get()](bool success, const auto& error,
                                                          const Value& userInfo) {
        if (asked->timedOut()) return promise->goOn();
        // What an earlier answer carried is none of a start that failed.
        promise->keep({success, error, asked->isFailing_ ? Value() : asked->response(), userInfo});
    };
    try {
        request->requestMethodCallbackWithUserInfo(method, deliver);
    } catch (...) {
        waiting->forget();
        throw;
    }
}

std::optional<KXRequestOutcome> KXRequestAnswer::await_resume() {
    return waiting_->takeOutcome();
}

}  // namespace kx
