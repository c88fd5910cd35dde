// SPDX-License-Identifier: MIT
#pragma once

#include <mutex>
#include <optional>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/NSObject.h>

namespace kx {

/// The release that the application store offers. Both fields may be read and written from any thread at
/// once: a read gives the old or the new text whole. Absent until set.
class KX_EXPORT KXAppInfo : public Subclass<KXAppInfo, NSObject> {
  public:
    /// The version of the latest published release ("2.10.1").
    [[nodiscard]] std::optional<std::string> releaseVersion() const { return releaseVersion_.load(); }
    void setReleaseVersion(std::optional<std::string_view> version) { releaseVersion_.store(version); }

    /// The notes of that release.
    [[nodiscard]] std::optional<std::string> releaseLog() const { return releaseLog_.load(); }
    void setReleaseLog(std::optional<std::string_view> notes) { releaseLog_.store(notes); }

  private:
    // A mutex, not std::atomic<std::shared_ptr>: the standard library of GCC 12 unlocks that one without
    // ordering, which the thread sanitizer rightly reports.
    class KX_EXPORT AtomicText {
      public:
        [[nodiscard]] std::optional<std::string> load() const;
        void store(std::optional<std::string_view> text);

      private:
        mutable std::mutex mutex_;
        std::optional<std::string> text_;  // guarded by mutex_
    };

    AtomicText releaseVersion_;
    AtomicText releaseLog_;
};

}  // namespace kx
