// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/NSApplication.h>

#include "Harbour.h"

int main() {
    const Harbour harbour;
    kx::NSApplication::sharedApplication()->run();
}
