// SPDX-License-Identifier: MIT

#include "pages/ButtonsPage.h"

#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/UI/KXConfirmButton.h>
#include <KXFoundation/UI/NSButton_Custom.h>

#include "PushButton.h"

namespace gallery {

using namespace kx;

namespace {

/// The button in the middle of a view of the given size, and its enlarged area beneath it in colour.
std::shared_ptr<NSView> withArea(const std::shared_ptr<NSButton>& button, NSSize size) {
    auto around = make<NSView>(NSRect({}, size));
    const NSSize own = button->frame().size;
    button->setFrame({{(size.width - own.width) / 2, (size.height - own.height) / 2}, own});
    const auto area = make<NSView>(NSButton_Custom::enlargedRect(button).movedBy(button->frame().origin));
    area->setWantsLayer(true);
    area->layer()->setBackgroundColor(NSColor::controlAccentColor()->colorWithAlphaComponent(0.2));
    area->layer()->setCornerRadius(4);
    around->addSubview(area);
    around->addSubview(button);
    return around;
}

std::shared_ptr<NSButton> confirmButton(KXConfirmButton::Style style, bool enabled) {
    auto button = make<KXConfirmButton>(NSRect(0, 0, 180, 44));
    button->setWantsLayer(true);
    button->layer()->setCornerRadius(8);
    button->setStyle(style);
    button->setTitle(text(enabled ? "buttons.confirm" : "buttons.off"));
    button->setDefaultButton(enabled);
    button->setEnabled(enabled);
    return button;
}

}  // namespace

void ButtonsPage::build(Column& column, Gallery&) {
    column.title(text("buttons.title"));
    column.paragraph(text("buttons.explanation"));
    column.space(12);
    const auto clicks = column.pair(text("buttons.clicks"), std::to_string(clicks_));
    const auto count = [this, clicks] { clicks->setStringValue(std::to_string(++clicks_)); };
    const auto evenly = pushButton("button.add", count);
    NSButton_Custom::setEnlargeEdge(evenly, 20);
    const auto unevenly = pushButton("button.add", count);
    NSButton_Custom::setEnlargeEdgeWithTop(unevenly, 0, 60, 30, 10);
    column.row({withArea(evenly, {220, 100}), withArea(unevenly, {220, 100})}, 100);
    column.space(16);
    const auto confirm = confirmButton(KXConfirmButton::Style::blue, true);
    confirm->setAction([count](NSControl&) { count(); });
    column.row({confirm, confirmButton(KXConfirmButton::Style::green, false)}, 44);
}

}  // namespace gallery
