#include <KXFoundation/Platform/Runtime/Module.h>
#include <KXFoundation/Platform/Services/DesktopModule.h>

#include "DesktopServices.h"

namespace kx {

namespace {

constexpr DesktopModule kModule{
    .version = DesktopModule::kVersion,
<<<<<<< HEAD
    .biometrics = &kDesktopBiometrics,
    .clockFormat = nullptr,
    .opener = &kDesktopOpener,
=======
    .biometrics = nullptr,
    .clockFormat = &kDesktopClockFormat,
    .opener = nullptr,
<<<<<<< HEAD
>>>>>>> time
    .secrets = nullptr,
=======
    .secrets = &kDesktopSecrets,
>>>>>>> 7e25960
};

}  // namespace

}  // namespace kx

extern "C" __attribute__((visibility("default"))) const void* kxModule(const kx::ModuleHost*) {
    return &kx::kModule;
}
