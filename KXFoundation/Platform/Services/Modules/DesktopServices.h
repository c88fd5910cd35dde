// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Services/DesktopModule.h>

/// The tables that the module hands out, each made in the file of its name.
namespace kx {

extern const DesktopAnnouncer kDesktopAnnouncer;
extern const DesktopBiometrics kDesktopBiometrics;
extern const DesktopClockFormat kDesktopClockFormat;
extern const DesktopOpener kDesktopOpener;
extern const DesktopProxies kDesktopProxies;
extern const DesktopSecrets kDesktopSecrets;

}  // namespace kx
