// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Runtime/Executor.h>

namespace kx::testing {

/// Begins and ends a scope with every queue empty and idle: stands first in a test whose blocks use what the
/// test made, or before a port is replaced.
class KX_EXPORT ScopedQueues {
  public:
    ScopedQueues() { drainQueues(); }
    ~ScopedQueues() { drainQueues(); }
    ScopedQueues(const ScopedQueues&) = delete;
    ScopedQueues& operator=(const ScopedQueues&) = delete;
};

}  // namespace kx::testing
