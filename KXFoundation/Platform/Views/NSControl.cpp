// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Foundation/NSCoder.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Views/ArchivedAlignment.h>
#include <KXFoundation/Platform/Views/NSControl.h>

namespace kx {

bool NSControl::init(NSRect frame) {
    return Super::init(frame);
}

bool NSControl::init(NSCoder& coder) {
    if (!Super::init(coder)) return false;
    alignment_ = decodeAlignment(coder).value_or(alignment_);
    enabled_ = coder.decodeBoolean("enabled").value_or(true);
    return true;
}

void NSControl::encodeWithCoder(NSCoder& coder) const {
    Super::encodeWithCoder(coder);
    encodeAlignment(coder, alignment_);
    coder.encode("enabled", enabled_);
}

void NSControl::setEnabled(bool enabled) {
    change(enabled_, enabled);
}
void NSControl::setHighlighted(bool highlighted) {
    change(highlighted_, highlighted);
}
void NSControl::setFont(std::shared_ptr<NSFont> font) {
    change(font_, std::move(font));
}
void NSControl::setAlignment(NSTextAlignment alignment) {
    change(alignment_, alignment);
}

std::shared_ptr<NSFont> NSControl::usedFont() const {
    return font_ ? font_ : NSFont::systemFontOfSize(NSFont::systemFontSize());
}

void NSControl::sendAction() {
    const auto held = self();
    const auto action = action_;  // it may set another one
    if (action) action(*this);
}

}  // namespace kx
