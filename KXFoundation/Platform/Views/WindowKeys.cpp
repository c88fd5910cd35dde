// SPDX-License-Identifier: MIT

#include <algorithm>
#include <vector>

#include <KXFoundation/Platform/Views/NSEvent.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

/// Which view of a window has the keys, and how the keyboard moves them.
namespace kx {

namespace {

/// A view that has or loses the keys may look different.
void redrawFocus(NSResponder* responder) {
    if (auto* view = dynamic_cast<NSView*>(responder)) view->setNeedsDisplay();
}

void collectKeyViews(const std::shared_ptr<NSView>& view, std::vector<std::shared_ptr<NSView>>& found) {
    if (view->isHidden() || view->alphaValue() <= 0) return;
    if (view->acceptsFirstResponder()) found.push_back(view);
    const auto subviews = view->subviews();  // a subclass's answer may change the tree
    for (const auto& subview : subviews) collectKeyViews(subview, found);
}

}  // namespace

std::shared_ptr<NSResponder> NSWindow::firstResponder() const {
    auto responder = firstResponder_.lock();
    const auto* view = dynamic_cast<const NSView*>(responder.get());
    if (!view) return responder;
    for (auto above = responder; above; above = above->nextResponder()) {
        const auto* part = dynamic_cast<const NSView*>(above.get());
        if (part && (part->isHidden() || part->alphaValue() <= 0)) return nullptr;
    }
    return view->window().get() == this ? responder : nullptr;
}

bool NSWindow::makeFirstResponder(const std::shared_ptr<NSResponder>& given) {
    const auto responder = given;
    const auto held = self();
    const auto former = firstResponder();
    if (responder == former) return true;
    if (former && !former->resignFirstResponder()) return false;
    if (responder && !responder->becomeFirstResponder()) {
        if (former) former->becomeFirstResponder();
        return false;
    }
    firstResponder_ = responder;
    redrawFocus(former.get());
    redrawFocus(responder.get());
    return true;
}

void NSWindow::showFocus(bool shown) {
    if (std::exchange(showsFocus_, shown) != shown) redrawFocus(firstResponder().get());
}

void NSWindow::selectKeyView(int step) {
    const auto held = self();
    const auto content = contentView_;
    if (!content) return;
    std::vector<std::shared_ptr<NSView>> views;
    collectKeyViews(content, views);
    if (views.empty()) return;
    const auto count = static_cast<std::ptrdiff_t>(views.size());
    const auto present = std::ranges::find(views, firstResponder()) - views.begin();
    const std::ptrdiff_t next =
        present == count ? (step > 0 ? 0 : count - 1) : (present + step + count) % count;
    makeFirstResponder(views[static_cast<std::size_t>(next)]);
    showFocus(true);
}

void NSWindow::sendKey(void (NSResponder::*handler)(const NSEvent&), const NSEvent& event) {
    const auto responder = firstResponder();
    ((responder ? *responder : *this).*handler)(event);
}

void NSWindow::keyDown(const NSEvent& event) {
    if (event.characters == "\t" && !isCommand(event))
        return selectKeyView(contains(event.modifierFlags, NSEventModifierFlags::Shift) ? -1 : 1);
    if (const auto content = contentView_) content->performKeyEquivalent(event);
}

bool NSView::performKeyEquivalent(const NSEvent& event) {
    const auto views = subviews_;
    return std::ranges::any_of(
        views, [&](const auto& view) { return view->isSeen() && view->performKeyEquivalent(event); });
}

}  // namespace kx
