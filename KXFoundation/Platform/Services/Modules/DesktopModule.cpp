// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>

#include "DesktopServices.h"

namespace kx {

namespace {

constexpr DesktopModule kModule{
    .version = DesktopModule::kVersion,
    .announcer = &kDesktopAnnouncer,
    .biometrics = &kDesktopBiometrics,
    .clockFormat = &kDesktopClockFormat,
    .opener = &kDesktopOpener,
    .proxies = &kDesktopProxies,
    .secrets = &kDesktopSecrets,
};

}  // namespace

}  // namespace kx

extern "C" __attribute__((visibility("default"))) const void* kxModule(const kx::ModuleHost*) {
    return &kx::kModule;
}
