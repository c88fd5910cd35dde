// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSClickGestureRecognizer.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/UI/KXMaskView.h>

namespace kx {

KXMaskViewDelegate::~KXMaskViewDelegate() = default;

bool KXMaskView::init(NSRect frame) {
    return Super::init(frame) && setUp();
}

bool KXMaskView::init(NSCoder& coder) {
    return Super::init(coder) && setUp();
}

bool KXMaskView::setUp() {
    setWantsLayer(true);
    layer()->setBackgroundColor(NSColor::colorWithWhite(0, 0.4));
    const auto click = NSClickGestureRecognizer::initWithTarget(self(), &KXMaskView::dismiss);
    click->setDelegate(self());
    addGestureRecognizer(click);
    return true;
}

void KXMaskView::show() {
    if (!allowsChange()) return;
    const auto key = NSApplication::sharedApplication()->keyWindow();
    if (!key) return;
    const auto held = self();
    leaveWindow();
    const auto content = key->contentView();
    setFrame(content ? content->bounds() : NSRect());
    const auto window = make<NSWindow>();
    shown_ = window;
    window->setContentView(held);
    key->addChildWindow(window, NSWindowOrderingMode::Above);
}

void KXMaskView::dismiss() {
    if (!allowsChange()) return;
    const auto held = self();
    leaveWindow();
    if (const auto told = delegate()) told->maskViewDidDismiss(*this);
}

/// The window that show() made goes with the mask; another one that the mask was put into stays.
void KXMaskView::leaveWindow() {
    const auto shownIn = window();
    removeFromSuperview();
    const bool isOwn = shownIn && shownIn == shown_.lock();
    if (const auto parent = shownIn ? shownIn->parentWindow() : nullptr; parent && isOwn)
        parent->removeChildWindow(shownIn);
}

bool KXMaskView::gestureRecognizerShouldReceiveTouch(NSGestureRecognizer&, const NSTouch&) {
    return true;
}

}  // namespace kx
