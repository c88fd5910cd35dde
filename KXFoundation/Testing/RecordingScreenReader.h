// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Services/ScreenReader.h>

namespace kx::testing {

/// A screen reader that remembers what it was to read out. Any thread.
class KX_EXPORT RecordingScreenReader final : public ScreenReader {
  public:
    void announce(std::string_view text) override {
        const std::lock_guard lock(mutex_);
        heard_.emplace_back(text);
    }
    /// The texts, the latest last.
    [[nodiscard]] std::vector<std::string> heard() const {
        const std::lock_guard lock(mutex_);
        return heard_;
    }
    void clear() {
        const std::lock_guard lock(mutex_);
        heard_.clear();
    }

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> heard_;  // guarded by mutex_
};

}  // namespace kx::testing
