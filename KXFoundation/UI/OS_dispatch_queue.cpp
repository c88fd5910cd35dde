// SPDX-License-Identifier: MIT

#include <string>
#include <unordered_set>

#include <KXFoundation/Platform/Foundation/CanonicalText.h>
#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Runtime/Monitor.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/UI/OS_dispatch_queue.h>

namespace kx {

namespace {

/// In their canonical form; guarded by the class's monitor.
using Tokens = std::unordered_set<std::string>;
constinit ProcessState<Tokens> usedTokens;

}  // namespace

void OS_dispatch_queue::once(std::string_view token, const std::function<void()>& block) {
    if (!block) return callerError("OS_dispatch_queue: once without a block");
    std::string canonical = canonicalText(token);
    const Monitor held(classObject());
    if (usedTokens.get().insert(std::move(canonical)).second) block();
}

}  // namespace kx
