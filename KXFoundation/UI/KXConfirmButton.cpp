// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/UI/KXConfirmButton.h>

namespace kx {

bool KXConfirmButton::init(NSRect frame) {
    return Super::init(frame) && setUp();
}

bool KXConfirmButton::init(NSCoder& coder) {
    return Super::init(coder) && setUp();
}

bool KXConfirmButton::setUp() {
    setFont(NSFont::fontWithNameOrFallback("PingFangSC-Semibold", 17));
    if (layer()) layer()->setCornerRadius(8);
    return true;
}

void KXConfirmButton::setEnabled(bool enabled) {
    Super::setEnabled(enabled);
}

}  // namespace kx
