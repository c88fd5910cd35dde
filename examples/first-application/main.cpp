// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/NSApplication.h>

#include "HarbourWindow.h"

int main() {
    const HarbourWindow harbour;
    if (!harbour.window->surface()) return 1;  // no display: the log says so
    kx::NSApplication::sharedApplication()->run();
}
