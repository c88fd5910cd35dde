// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <cstdint>

#include <KXFoundation/Platform/Runtime/Result.h>

/// The table between the library and its module of desktop services, which talks to the session and system
/// buses through GIO (Modules/Desktop*.cpp). Whether the desktop answers shows at each call. Each service's
/// header says on which threads it may be called.
namespace kx {

struct DesktopAnnouncer;    // DesktopAnnouncer.h: the accessibility bus
struct DesktopBiometrics;   // DesktopBiometrics.h: fprintd
struct DesktopClockFormat;  // DesktopClockFormat.h: the desktop's 12/24-hour setting
struct DesktopOpener;       // DesktopOpener.h: the portal that opens addresses
struct DesktopProxies;      // DesktopProxies.h: the proxies that the user has set
struct DesktopSecrets;      // DesktopSecrets.h: the Secret Service

struct DesktopModule {
    static constexpr std::uint32_t kVersion = 3;

    std::uint32_t version;
    const DesktopAnnouncer* announcer;
    const DesktopBiometrics* biometrics;
    const DesktopClockFormat* clockFormat;
    const DesktopOpener* opener;
    const DesktopProxies* proxies;
    const DesktopSecrets* secrets;
};

/// The module, opened at the first call, which takes milliseconds; nullptr where there is none (one log line
/// was written). Any thread.
const DesktopModule* desktopModule();
/// The same for who may wait that long at most, the answer of the desktop included: takes what the opening
/// took off the patience. TimedOut if it takes longer, Unsupported where there is no module. Any thread.
[[nodiscard]] Result<const DesktopModule*> desktopModuleWithin(std::chrono::milliseconds& patience);

}  // namespace kx
