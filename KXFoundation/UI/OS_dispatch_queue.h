// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

/// Runs a block once in the life of the process:
///
///     OS_dispatch_queue::once("de.harbour.welcome", [] { showWelcome(); });
class KX_EXPORT OS_dispatch_queue : public Subclass<OS_dispatch_queue, NSObject> {
  public:
    /// Runs the block, on the calling thread and before this returns, unless a call with this token has run
    /// one. Tokens are equal as Unicode texts: "é" as one character or as two is one token, "E" and "e" are
    /// two; bytes that are no UTF-8 are compared as they are. A token counts as used from before its block
    /// runs, even if that throws. An absent block is a caller error and uses nothing.
    ///
    /// Any thread. All calls go one after another, blocks included, under the monitor of this class
    /// (`Monitor(OS_dispatch_queue::classObject())`): a block may call once() again, with its own token too,
    /// but a slow one holds up every other caller.
    static void once(std::string_view token, const std::function<void()>& block);

  protected:
    OS_dispatch_queue() = default;
};

}  // namespace kx
