// SPDX-License-Identifier: MIT

#include "InspectingWindow.h"

#include <cstdio>

#include <KXFoundation/Platform/Views/NSEvent.h>
#include <KXFoundation/Platform/Views/ViewDescription.h>

namespace gallery {

using namespace kx;

void InspectingWindow::sendEvent(const NSEvent& event) {
    if (event.type == NSEventType::MouseDown &&
        contains(event.modifierFlags, NSEventModifierFlags::Control)) {
        inspect(event.locationInWindow);
    } else {
        Super::sendEvent(event);
    }
}

void InspectingWindow::inspect(NSPoint point) {
    const auto root = contentView();
    const auto view = root ? root->hitTest(point) : nullptr;
    if (!view) return;
    std::puts(describeTree(*root).c_str());
    std::fflush(stdout);
    auto line = line_.lock();
    if (!line || !line->superview()) {
        line = make<NSTextField>();
        line_ = line;
        root->addSubview(line);
    }
    line->setStringValue(view->description());
    line->setFrame({12, frame().size.height - 40, 420, 28});
}

}  // namespace gallery
