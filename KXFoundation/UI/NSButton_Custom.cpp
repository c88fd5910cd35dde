// SPDX-License-Identifier: MIT

#include <optional>

#include <KXFoundation/Platform/Runtime/AssociatedValues.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/UI/NSButton_Custom.h>

namespace kx {

const char NSButton_Custom::topNameKey{};
const char NSButton_Custom::leftNameKey{};
const char NSButton_Custom::bottomNameKey{};
const char NSButton_Custom::rightNameKey{};

namespace {

void store(NSButton& button, const char& key, double edge) {
    setAssociatedValue(button, &key, static_cast<double>(static_cast<float>(edge)));
}

std::optional<double> stored(const NSButton& button, const char& key) {
    return associatedValue(button, &key).asReal();
}

}  // namespace

void NSButton_Custom::setEnlargeEdge(const std::shared_ptr<NSButton>& button, double edge) {
    setEnlargeEdgeWithTop(button, edge, edge, edge, edge);
}

void NSButton_Custom::setEnlargeEdgeWithTop(const std::shared_ptr<NSButton>& button, double top, double left,
                                            double bottom, double right) {
    if (!button) return;
    store(*button, topNameKey, top);
    store(*button, leftNameKey, left);
    store(*button, bottomNameKey, bottom);
    store(*button, rightNameKey, right);
}

NSRect NSButton_Custom::enlargedRect(const std::shared_ptr<NSButton>& button) {
    if (!button) return {};
    const auto top = stored(*button, topNameKey);
    const auto left = stored(*button, leftNameKey);
    const auto bottom = stored(*button, bottomNameKey);
    const auto right = stored(*button, rightNameKey);
    const NSRect own = button->bounds();
    if (!top || !left || !bottom || !right) return own;
    return {own.origin.x - *left, own.origin.y - *top, own.size.width + *left + *right,
            own.size.height + *top + *bottom};
}

std::shared_ptr<NSView> NSButton_Custom::hitTest(const std::shared_ptr<NSButton>& button, NSPoint point) {
    if (!button) return nullptr;
    const NSRect area = enlargedRect(button);
    const NSPoint origin = button->frame().origin;
    const bool isHit = area != button->bounds() && area.contains({point.x - origin.x, point.y - origin.y});
    return isHit ? button : button->NSView::hitTest(point);
}

}  // namespace kx
