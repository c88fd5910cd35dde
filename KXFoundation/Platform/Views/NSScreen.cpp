// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/NSScreen.h>
#include <KXFoundation/Platform/Views/WindowSurface.h>

namespace kx {

std::shared_ptr<NSScreen> NSScreen::mainScreen() {
    const auto size = WindowSystem::slot().current().mainScreenSize();
    return size ? make<NSScreen>(NSRect({}, *size)) : nullptr;
}

bool NSScreen::init(NSRect frame) {
    frame_ = frame;
    return Super::init();
}

}  // namespace kx
