#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/TextLayout.h>
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

void drawLine(GraphicsContext& context, const TextLayout& line, NSRect inside, const NSColor& color) {
    const TextMeasure plain = TextLayout("", line.font()).measure();
    const double baseline =
        inside.origin.y + (inside.size.height - plain.size.height) / 2 + plain.firstBaseline;
    const double crisp = context.pixelAligned({0, baseline, 1, 1}).origin.y;
    context.drawTextOnBaseline(line, {inside.origin.x, crisp}, color);
}

}  // namespace kx::ControlLook
