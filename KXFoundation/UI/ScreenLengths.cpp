// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/NSScreen.h>
#include <KXFoundation/UI/KXUIUtils.h>

namespace kx {

namespace {

NSSize mainScreenSize() {
    const auto screen = NSScreen::mainScreen();
    return screen ? screen->frame().size : NSSize();
}

}  // namespace

double KXUIUtils::maxScreenLength() {
    const NSSize size = mainScreenSize();
    return size.width < size.height ? size.height : size.width;
}

double KXUIUtils::minScreenLength() {
    const NSSize size = mainScreenSize();
    return size.width < size.height ? size.width : size.height;
}

bool KXUIUtils::isNotchScreen() {
    return false;
}

NSEdgeInsets KXUIUtils::safeAreaInsets() {
    return {};
}

void KXUIUtils::setCornerForView(const std::shared_ptr<NSView>&, std::int64_t, double) {}

}  // namespace kx
