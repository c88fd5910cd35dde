// SPDX-License-Identifier: MIT
#pragma once

#include <atomic>
#include <mutex>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSLocale.h>

namespace kx::testing {

/// Language settings that the test gives and may change at any time.
class KX_EXPORT InjectedLocale final : public LocaleSettings {
  public:
    explicit InjectedLocale(std::vector<std::string> languages = {"en-US"}, std::string_view locale = "en_US")
        : languages_(std::move(languages)), locale_(locale) {}

    void setPreferredLanguages(std::vector<std::string> languages);
    void setLocale(std::string_view identifier);

    [[nodiscard]] std::vector<std::string> preferredLanguages() const override;
    [[nodiscard]] std::string localeIdentifier() const override;
    [[nodiscard]] std::uint64_t version() const noexcept override { return version_; }

  private:
    mutable std::mutex mutex_;
    std::vector<std::string> languages_;  // guarded by mutex_
    std::string locale_;                  // guarded by mutex_
    std::atomic<std::uint64_t> version_{1};
};

}  // namespace kx::testing
