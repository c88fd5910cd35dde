// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/NSApplication.h>

#include "Greeting.h"

int main() {
    const Greeting greeting;
    kx::NSApplication::sharedApplication()->run();
}
