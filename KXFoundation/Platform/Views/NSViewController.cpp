// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSViewController.h>

namespace kx {

std::shared_ptr<NSView> NSViewController::view() {
    if (view_) return view_;
    loadView();
    if (view_) viewDidLoad();
    return view_;
}

void NSViewController::loadView() {
    setView(make<NSView>());
}

}  // namespace kx
