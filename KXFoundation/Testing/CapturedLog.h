// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <mutex>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Runtime/CallerError.h>
#include <KXFoundation/Platform/Runtime/Log.h>

namespace kx::testing {

/// Takes the log for one scope and keeps its lines.
class KX_EXPORT CapturedLog {
  public:
    CapturedLog();
    [[nodiscard]] std::vector<std::string> lines() const;

  private:
    class Sink;
    std::shared_ptr<Sink> sink_;
    ScopedPort<LogSink> scope_;
};

/// Turns strict mode off for one scope: for tests of the harmless answer to a caller error.
class KX_EXPORT LenientMode {
  public:
    LenientMode() { setStrictMode(false); }
    ~LenientMode() { setStrictMode(true); }
    LenientMode(const LenientMode&) = delete;
    LenientMode& operator=(const LenientMode&) = delete;
};

}  // namespace kx::testing
