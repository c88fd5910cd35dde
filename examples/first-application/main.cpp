// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/NSApplication.h>

#include "HarbourWindow.h"

int main() {
    const HarbourWindow harbour;
    kx::NSApplication::sharedApplication()->run();
}
