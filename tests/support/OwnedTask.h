// SPDX-License-Identifier: MIT
#pragma once

#include <coroutine>

namespace kx::testing {

/// A coroutine whose owner may destroy it.
struct OwnedTask {
    struct promise_type {
        OwnedTask get_return_object() { return {std::coroutine_handle<promise_type>::from_promise(*this)}; }
        std::suspend_never initial_suspend() noexcept { return {}; }
        std::suspend_always final_suspend() noexcept { return {}; }
        void return_void() {}
        void unhandled_exception() { throw; }
    };
    std::coroutine_handle<promise_type> handle;
};

}  // namespace kx::testing
