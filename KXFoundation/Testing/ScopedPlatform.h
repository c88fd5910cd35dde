// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Platform/Services/Torch.h>
#include <KXFoundation/Testing/BundleFolder.h>
#include <KXFoundation/Testing/FakeEnvironment.h>
#include <KXFoundation/Testing/InjectedClockFormat.h>
#include <KXFoundation/Testing/InjectedInterfaces.h>
#include <KXFoundation/Testing/InjectedLocale.h>
#include <KXFoundation/Testing/InjectedTimeZone.h>
#include <KXFoundation/Testing/RecordingScreenReader.h>
#include <KXFoundation/Testing/RecordingWorkspace.h>
#include <KXFoundation/Testing/ScopedLanguageState.h>
#include <KXFoundation/Testing/TemporaryDirectory.h>

namespace kx::testing {

/// A process as if just started, for one scope, on a desktop that is the same everywhere: no process-wide
/// object and no language chosen yet, an empty main bundle, and every queue idle at both ends.
///
///     ScopedPlatform platform;
///     platform.bundle().addStrings("fr", {{"greeting", "Bonjour"}});
///     platform.locale().setPreferredLanguages({"fr-CA"});
///
/// HOME and the XDG folders are in a temporary directory, so that defaults, caches, the photo library and the
/// keychain (its encrypted file) begin empty; there is no bus, and no other variable of the environment. The
/// user prefers en-US and lets the locale choose 12 or 24 hours; the time zone is UTC, the only network
/// interface the loopback, and there is no torch. Addresses that are opened and texts that are read out are
/// remembered and go no further. Time, the files and the network are the machine's: ManualClock,
/// FaultyFileSystem, InjectedWeb and SimulatedWorld replace them. Main thread.
class KX_EXPORT ScopedPlatform {
  public:
    ScopedPlatform() : ScopedPlatform(std::string_view()) {}
    /// The main bundle is that folder: the application's own resources.
    explicit ScopedPlatform(std::string_view bundlePath);
    ~ScopedPlatform();

    /// Holds "home", "bundle" and "system"; the rest is the test's own.
    [[nodiscard]] const TemporaryDirectory& directory() const noexcept { return directory_; }
    [[nodiscard]] FakeEnvironment& environment() noexcept { return *environment_; }
    [[nodiscard]] InjectedLocale& locale() noexcept { return *locale_; }
    [[nodiscard]] InjectedClockFormat& clockFormat() noexcept { return *clockFormat_; }
    [[nodiscard]] RecordingWorkspace& workspace() noexcept { return *workspace_; }
    [[nodiscard]] RecordingScreenReader& screenReader() noexcept { return *screenReader_; }

    /// The main bundle's folder, unless another one was named. Fill it before the code under test looks into
    /// it.
    [[nodiscard]] BundleFolder& bundle() noexcept { return bundle_; }

    /// "Europe/Berlin"; a name that the system does not know stands for UTC.
    void setTimeZone(std::string name);
    /// What the system lists, or the error that it gives; "en0" and "en1" go by their names.
    void setInterfaces(Result<std::vector<InterfaceAddress>> list);
    /// Writes a file below the root that torches are looked for in:
    /// writeSystemFile("sys/class/leds/white:torch/max_brightness", "255\n").
    void writeSystemFile(std::string_view name, std::string_view contents);

    /// Begins a process anew over the same folders, variables and settings, as a restart of the application
    /// does. What the process before has not flushed (NSUserDefaults::synchronize) is lost, as at its exit;
    /// its objects must not be used any more.
    void restart();

  private:
    void begin();

    TemporaryDirectory directory_;
    BundleFolder bundle_;
    std::string bundlePath_;
    std::shared_ptr<FakeEnvironment> environment_;
    std::shared_ptr<InjectedLocale> locale_;
    std::shared_ptr<InjectedClockFormat> clockFormat_;
    std::shared_ptr<RecordingWorkspace> workspace_;
    std::shared_ptr<RecordingScreenReader> screenReader_;
    ScopedPort<Environment> environmentScope_;
    ScopedPort<LocaleSettings> localeScope_;
    ScopedPort<ClockFormatSetting> clockFormatScope_;
    ScopedPort<TimeZoneSettings> timeZoneScope_;
    ScopedPort<NetworkInterfaces> interfacesScope_;
    ScopedPort<Torch> torchScope_;
    ScopedPort<Workspace> workspaceScope_;
    ScopedPort<ScreenReader> screenReaderScope_;
    ScopedLanguageState language_;
    std::unique_ptr<ScopedProcessState> state_;  // goes first, while its objects still have their ports
};

}  // namespace kx::testing
