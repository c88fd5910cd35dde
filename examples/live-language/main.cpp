// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/NSApplication.h>

#include "CrateCounter.h"

int main() {
    const CrateCounter counter;
    kx::NSApplication::sharedApplication()->run();
}
