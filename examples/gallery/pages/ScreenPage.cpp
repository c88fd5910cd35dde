// SPDX-License-Identifier: MIT

#include "pages/ScreenPage.h"

#include <cstdio>

#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSViewController.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/UI/KXUIUtils.h>

#include "Gallery.h"

namespace gallery {

using namespace kx;

namespace {

std::string number(double value) {
    char written[32];
    std::snprintf(written, sizeof written, "%g", value);
    return written;
}

}  // namespace

void ScreenPage::build(Column& column, Gallery& gallery) {
    column.title(text("screen.title"));
    column.paragraph(text("screen.explanation"));
    column.space(12);
    column.pair(text("screen.longer"), number(KXUIUtils::maxScreenLength()));
    column.pair(text("screen.shorter"), number(KXUIUtils::minScreenLength()));
    column.pair(text("screen.scale"), number(gallery.window()->backingScaleFactor()));
    column.pair(text("screen.notch"), text(KXUIUtils::isNotchScreen() ? "general.yes" : "general.no"));
    const auto& windows = NSApplication::sharedApplication()->windows();
    column.pair(text("screen.windows"), std::to_string(windows.size()));
    const auto controller = KXUIUtils::currentViewController();
    column.pair(text("screen.controller"), controller ? controller->title() : text("general.none"));
}

}  // namespace gallery
