// SPDX-License-Identifier: MIT
#pragma once

#include <coroutine>
#include <memory>
#include <optional>

#include <KXFoundation/Core/KXRequest.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// How a request ended.
struct KXRequestOutcome {
    bool success = false;
    std::shared_ptr<KXError> error;
    Value response;  ///< the dictionary of the answer, null if the request could not be started
    Value userInfo;
};

/// A request that a coroutine awaits, made by KXRequest::answer:
///
///     const std::optional<KXRequestOutcome> outcome = co_await request->answer(ask);
///
/// The request is started by the await. The coroutine goes on in a later block of the main queue, and gets
/// none if the request was refused as busy, timed out, was cleaned or ceased to be; this does not keep it
/// alive, a shared pointer in the coroutine does. What the method throws comes out of the await. A coroutine
/// that is destroyed while it waits is not resumed; that happens on the main thread.
class KX_EXPORT KXRequestAnswer {
  public:
    KXRequestAnswer(std::weak_ptr<KXRequest> request, KXRequest::Method method);
    ~KXRequestAnswer();
    KXRequestAnswer(const KXRequestAnswer&) = delete;
    KXRequestAnswer& operator=(const KXRequestAnswer&) = delete;

    [[nodiscard]] bool await_ready() const noexcept { return false; }
    void await_suspend(std::coroutine_handle<> coroutine);
    std::optional<KXRequestOutcome> await_resume();

  private:
    class Waiting;
    class Promise;

    std::weak_ptr<KXRequest> request_;
    KXRequest::Method method_;
    std::shared_ptr<Waiting> waiting_;
};

}  // namespace kx
