// SPDX-License-Identifier: MIT

#include <atomic>
#include <cstdlib>

#include <execinfo.h>
#include <unistd.h>

#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Runtime/Log.h>

namespace kx {

namespace {
constinit std::atomic<bool> strict{false};
}

void setStrictMode(bool on) noexcept {
    strict.store(on, std::memory_order_relaxed);
}

bool strictMode() noexcept {
    return strict.load(std::memory_order_relaxed);
}

void callerError(std::string_view what) {
    log(LogLevel::Fault, what);
    if (!strictMode()) return;
    void* frames[64];
    backtrace_symbols_fd(frames, backtrace(frames, 64), STDERR_FILENO);
    std::abort();
}

}  // namespace kx
