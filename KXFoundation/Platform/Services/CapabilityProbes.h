#pragma once

#include <KXFoundation/Platform/Services/Capabilities.h>

/// What capabilities() asks: every service has its probe, and the list in Capabilities.cpp a line for it.
namespace kx {

/// Whether a display server listens where the session says.
Capability probeDisplay();
/// Whether any font is installed in the folders that fonts are looked for in.
Capability probeFonts();
/// Whether the user's message bus answers.
Capability probeBus();
/// Whether the desktop portal opens addresses; else which program does.
Capability probePortal();
/// Whether HTTPS can be spoken, and by what.
Capability probeCurl();
/// Whether there is a torch that this user may switch.
Capability probeTorch();
/// Whether there is a sensor for fingerprints or faces.
Capability probeBiometrics();

}  // namespace kx
