// SPDX-License-Identifier: MIT

#include <utility>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Localization/NSButton_RTL.h>
#include <KXFoundation/Localization/RightToLeftOperations.h>
#include <KXFoundation/Platform/Runtime/AssociatedValues.h>
#include <KXFoundation/Platform/Views/NSButton.h>

namespace kx {

namespace {

using Button = std::shared_ptr<NSButton>;

// The addresses are the keys.
constexpr char kImageInsets{}, kTitleInsets{}, kContentInsets{};

void setInsets(const Button& button, const char& key, NSEdgeInsets insets) {
    if (!button) return;
    if (KXLocalizationUtils::isRTL()) std::swap(insets.left, insets.right);
    setAssociatedValue(
        *button, &key,
        ArrayBuilder().add(insets.top).add(insets.left).add(insets.bottom).add(insets.right).build());
}

NSEdgeInsets insets(const Button& button, const char& key) {
    if (!button) return {};
    const Value stored = associatedValue(*button, &key);
    const auto sides = stored.elements();
    if (sides.size() != 4) return {};
    return {*sides[0].asReal(), *sides[1].asReal(), *sides[2].asReal(), *sides[3].asReal()};
}

}  // namespace

void NSButton_RTL::rtl_setImageEdgeInsets(const Button& button, NSEdgeInsets insets) {
    setInsets(button, kImageInsets, insets);
}

void NSButton_RTL::rtl_setTitleEdgeInsets(const Button& button, NSEdgeInsets insets) {
    setInsets(button, kTitleInsets, insets);
}

void NSButton_RTL::rtl_setContentEdgeInsets(const Button& button, NSEdgeInsets insets) {
    setInsets(button, kContentInsets, insets);
}

NSEdgeInsets NSButton_RTL::imageEdgeInsets(const Button& button) {
    return insets(button, kImageInsets);
}

NSEdgeInsets NSButton_RTL::titleEdgeInsets(const Button& button) {
    return insets(button, kTitleInsets);
}

NSEdgeInsets NSButton_RTL::contentEdgeInsets(const Button& button) {
    return insets(button, kContentInsets);
}

Button NSButton_RTL::rtl_initWithFrame(const Button& button, NSRect frame) {
    return button && rtlInitWithFrameOperation(*button, frame) ? button : nullptr;
}

Button NSButton_RTL::rtl_initWithCoder(const Button& button, NSCoder& coder) {
    return button && rtlInitWithCoderOperation(*button, coder) ? button : nullptr;
}

}  // namespace kx
