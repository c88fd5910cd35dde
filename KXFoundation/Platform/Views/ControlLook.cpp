// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Views/ControlLook.h>

namespace kx::ControlLook {

void drawFace(GraphicsContext& context, NSRect rect, const NSColor& fill, const NSColor& border,
              double cornerRadius) {
    const NSRect face = context.pixelAligned(rect);
    context.fill(face, cornerRadius, fill);
    context.stroke(face, cornerRadius, 1 / context.scale(), border);
}

void drawFocusRing(GraphicsContext& context, NSRect rect, bool onAccent) {
    const auto color =
        onAccent ? NSColor::alternateSelectedControlTextColor() : NSColor::controlAccentColor();
    context.stroke(context.pixelAligned(rect).insetBy(2, 2), kCornerRadius - 2, 2, *color);
}

}  // namespace kx::ControlLook
