// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Localization/LanguageState.h>

namespace kx::testing {

/// The language variables of a process that has just started, for one scope; those from before come back at
/// its end. Part of every ScopedPlatform. Main thread.
class KX_EXPORT ScopedLanguageState {
  public:
    ScopedLanguageState() { exchange(); }
    ~ScopedLanguageState() { exchange(); }
    ScopedLanguageState(const ScopedLanguageState&) = delete;
    ScopedLanguageState& operator=(const ScopedLanguageState&) = delete;

    /// Makes every variable absent again.
    static void restart();

  private:
    void exchange();

    std::optional<std::string> selectLanguage_, selectLog_, currentUse_;
    std::optional<LanguageSet> supported_, rightToLeft_;
    std::shared_ptr<NSBundle> selectBundle_, defaultBundle_, currentBundle_;
};

}  // namespace kx::testing
