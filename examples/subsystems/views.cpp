// SPDX-License-Identifier: MIT

#include <cstdio>

#include <KXFoundation/Localization/Localized.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/Testing/ManualClock.h>
#include <KXFoundation/Testing/OffscreenWindow.h>
#include <KXFoundation/UI/KXMaskView.h>
#include <KXFoundation/UI/KXSimpleLoadingView.h>
#include <KXFoundation/UI/KXToastView.h>
#include <KXFoundation/UI/NSButton_Custom.h>
#include <KXFoundation/UI/OS_dispatch_queue.h>

using namespace kx;

/// What an application writes: a small button that is easy to hit, and says what was done.
std::shared_ptr<NSButton> saveButton() {
    auto button = make<NSButton>(NSRect(40, 40, 16, 16));
    NSButton_Custom::setEnlargeEdge(button, 20);
    button->setAction([](NSControl&) {
        OS_dispatch_queue::once("org.example.harbour.first-save",
                                [] { std::puts("saved for the first time"); });
        KXToastView::initWithTitle(localized("toast.saved"), NSImage::imageNamed("boat"))->showWithTimeout(3);
    });
    return button;
}

/// And how a test uses it: in a window that nobody sees, with time that moves when it is told.
int main() {
    const auto clock = std::make_shared<testing::ManualClock>();
    const ScopedPort<Clock> scope{clock};
    const testing::OffscreenWindow shown(NSSize{320, 240});
    const auto tell = [&](const char* when) {
        std::printf("%s: %d over the window\n", when, static_cast<int>(shown.window->childWindows().size()));
    };

    shown.content().addSubview(saveButton());
    shown.click({30, 30});  // beside the button
    tell("clicked");
    shown.click({160, 20});
    shown.click({30, 30});  // the toast is over the button
    clock->advance(std::chrono::seconds(3));
    tell("three seconds later");

    const auto loading = make<KXSimpleLoadingView>(NSRect(140, 100, 32, 32));
    loading->setWantsLayer(true);
    loading->startLoading();
    shown.content().addSubview(loading);
    const auto mask = make<KXMaskView>();
    mask->show();
    tell("masked");
    shown.click({160, 120});
    tell("clicked again");
}
