// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>

#include <KXFoundation/Platform/Services/Capabilities.h>

/// What capabilities() asks: every service has its probe, and the list in Capabilities.cpp a line for it.
namespace kx {

/// How long a probe may wait for an answer from outside.
using Patience = std::chrono::milliseconds;

/// Whether a display server listens where the session says.
Capability probeDisplay(Patience patience);
/// Whether any font is installed in the folders that fonts are looked for in.
Capability probeFonts(Patience patience);
/// Whether the user's message bus answers.
Capability probeBus(Patience patience);
/// Whether the desktop portal opens addresses; else which program does.
Capability probePortal(Patience patience);
/// Where keychain items are kept.
Capability probeKeyring(Patience patience);
/// Whether HTTPS can be spoken, and by what.
Capability probeCurl(Patience patience);
/// Whether dates can be written in every language.
Capability probeDates(Patience patience);
/// Whether the photo library can keep its index.
Capability probePhotos(Patience patience);
/// Whether frames can be taken out of videos, and by what.
Capability probeVideo(Patience patience);
/// Whether there is a torch that this user may switch.
Capability probeTorch(Patience patience);
/// Whether there is a sensor for fingerprints or faces.
Capability probeBiometrics(Patience patience);

}  // namespace kx
