// SPDX-License-Identifier: MIT

#include "pages/ToastPage.h"

#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/UI/KXToastView.h>

#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

/// Goes when it is clicked, where a plain toast stays until its time is up.
class LeavingToast : public Subclass<LeavingToast, KXToastView> {
  public:
    void willDismissToastView() override {
        Super::willDismissToastView();
        removeFromSuperview();
    }
};

void showFor(double seconds) {
    KXToastView::initWithTitle(text("toast.saved"), nullptr)->showWithTimeout(seconds);
}

void showWithPicture() {
    KXToastView::initWithTitle(text("toast.saved"), NSImage::imageNamed("toast_done"))->showWithTimeout(3);
}

void showLeaving() {
    const auto toast = make<LeavingToast>(text("toast.click_me"), nullptr);
    toast->setShouldDismissWhenClicked(true);
    toast->show();
}

/// A click makes it stop listening: clearing all leaves it, too.
void showStaying() {
    const auto toast = KXToastView::initWithTitle(text("toast.stays"), nullptr);
    toast->setShouldDismissWhenClicked(true);
    toast->showWithTimeout(10);
}

void clearAll() {
    NSNotificationCenter::defaultCenter().postNotificationName(
        KXToastViewShouldDismissWithoutAnimationNotification);
}

}  // namespace

ToastPage::~ToastPage() {
    clearAll();
}

void ToastPage::build(Column& column, Gallery&) {
    column.title(text("toast.title"));
    column.paragraph(text("toast.explanation"));
    column.space(12);
    column.row({pushButton("toast.short", [] { showFor(3); }), pushButton("toast.long", [] { showFor(0); })});
    column.row({pushButton("toast.picture", showWithPicture), pushButton("toast.click", showLeaving)});
    column.row({pushButton("toast.stay", showStaying), pushButton("toast.clear", clearAll)});
}

void ToastPage::demonstrate(Gallery&) {
    showWithPicture();
}

}  // namespace gallery
