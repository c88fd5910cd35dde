// SPDX-License-Identifier: MIT
#pragma once

#include <coroutine>
#include <exception>

namespace kx {

/// A coroutine that nobody waits for. It begins at the call, goes on wherever what it awaits resumes it, and
/// frees itself at its end. An exception that leaves it ends the process, as one that leaves a queue's block
/// does.
///
///     DetachedTask showHarbours(std::shared_ptr<HarbourRequest> request) {
///         if (const auto outcome = co_await request->answer(ask)) show(outcome->response);
///     }
///
/// Hand its arguments over by value: a reference may be gone when the coroutine goes on.
struct DetachedTask {
    struct promise_type {
        DetachedTask get_return_object() noexcept { return {}; }
        std::suspend_never initial_suspend() noexcept { return {}; }
        std::suspend_never final_suspend() noexcept { return {}; }
        void return_void() noexcept {}
        [[noreturn]] void unhandled_exception() noexcept { std::terminate(); }
    };
};

}  // namespace kx
