#pragma once

#include <memory>
#include <string>

#include <KXFoundation/Platform/Foundation/NSLocale.h>
#include <KXFoundation/Platform/Runtime/Environment.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Testing/BundleFolder.h>
#include <KXFoundation/Testing/FakeEnvironment.h>
#include <KXFoundation/Testing/InjectedLocale.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx::testing {

/// A process as if just started, for one scope: no process-wide object made yet, HOME and the XDG folders in
/// a temporary directory, no other variable set, en-US preferred, an empty main bundle, and every queue idle
/// at both ends.
///
///     ScopedPlatform platform;
///     platform.bundle().addStrings("fr", {{"greeting", "Bonjour"}});
///     platform.locale().setPreferredLanguages({"fr-CA"});
class ScopedPlatform {
  public:
    ScopedPlatform();
    ~ScopedPlatform();

    /// Holds "home" and "bundle"; the rest is the test's own.
    [[nodiscard]] const TemporaryDirectory& directory() const noexcept { return directory_; }
    [[nodiscard]] FakeEnvironment& environment() noexcept { return *environment_; }
    [[nodiscard]] InjectedLocale& locale() noexcept { return *locale_; }
    /// The main bundle's folder. Fill it before the code under test looks into it.
    [[nodiscard]] BundleFolder& bundle() noexcept { return bundle_; }

    /// Begins a process anew over the same folders, variables and languages, as a restart of the application
    /// does. Objects of the process before must not be used any more.
    void restart();

  private:
    void begin();

    TemporaryDirectory directory_;
    BundleFolder bundle_;
    std::shared_ptr<FakeEnvironment> environment_;
    std::shared_ptr<InjectedLocale> locale_;
    ScopedPort<Environment> environmentScope_;
    ScopedPort<LocaleSettings> localeScope_;
    std::unique_ptr<ScopedProcessState> state_;  // goes first, while its objects still have their ports
};

}  // namespace kx::testing
