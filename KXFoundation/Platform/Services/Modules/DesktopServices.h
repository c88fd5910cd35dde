#pragma once

#include <KXFoundation/Platform/Services/DesktopModule.h>

/// The tables that the module hands out, each made in the file of its name.
namespace kx {

<<<<<<< HEAD
<<<<<<< HEAD
extern const DesktopBiometrics kDesktopBiometrics;
extern const DesktopOpener kDesktopOpener;
=======
extern const DesktopClockFormat kDesktopClockFormat;
>>>>>>> time
=======
extern const DesktopSecrets kDesktopSecrets;
>>>>>>> 7e25960

}  // namespace kx
