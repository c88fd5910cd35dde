// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Services/Workspace.h>

namespace kx::testing {

/// A desktop that opens nothing and remembers what it was to open. Any thread.
class KX_EXPORT RecordingWorkspace final : public Workspace {
  public:
    void openURL(const NSURL& address) override {
        const std::lock_guard lock(mutex_);
        opened_.push_back(address.absoluteString());
    }
    /// The addresses, the latest last.
    [[nodiscard]] std::vector<std::string> opened() const {
        const std::lock_guard lock(mutex_);
        return opened_;
    }

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> opened_;  // guarded by mutex_
};

}  // namespace kx::testing
