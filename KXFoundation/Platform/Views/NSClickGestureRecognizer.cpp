// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/NSClickGestureRecognizer.h>
#include <KXFoundation/Platform/Views/NSView.h>

namespace kx {

void NSClickGestureRecognizer::touchDidEnd(const NSTouch& touch) {
    const auto watched = view();
    if (touch.view && watched && touch.view->isDescendantOf(*watched)) callAction();
}

}  // namespace kx
