// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Graphics/TextLayout.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/Platform/Views/ControlLook.h>
#include <KXFoundation/Platform/Views/NSButton.h>

/// A button's content is its picture and its title side by side, placed as one by the alignment. The picture
/// stands where reading begins.
namespace kx {

struct NSButton::Content {
    TextLayout title;
    TextMeasure measure;
    NSSize image;
    double gap;

    [[nodiscard]] double width() const { return image.width + gap + std::ceil(measure.size.width); }
};

NSButton::Content NSButton::content(double mostHeight) const {
    NSSize picture = image_ ? image_->size() : NSSize();
    if (picture.height > mostHeight) picture = {picture.width * mostHeight / picture.height, mostHeight};
    TextLayout title(title_, usedFont());
    const TextMeasure measure = title.measure();
    const bool both = picture.width > 0 && !title_.empty();
    return {std::move(title), measure, picture, both ? ControlLook::kImageGap : 0};
}

NSSize NSButton::intrinsicContentSize() const {
    const Content shown = content(ControlLook::kHeight - 2 * ControlLook::kImageMargin);
    return {shown.width() + 2 * ControlLook::kPadding,
            std::max(ControlLook::kHeight, std::ceil(shown.measure.size.height) + 8)};
}

void NSButton::drawRect(GraphicsContext& context, NSRect) {
    ControlLook::drawEnabled(context, isEnabled(), [&] {
        drawBackground(context);
        drawContent(context);
    });
}

void NSButton::drawBackground(GraphicsContext& context) const {
    const auto face = default_ ? NSColor::controlAccentColor() : NSColor::controlColor();
    const double radius =
        layer() && layer()->cornerRadius() > 0 ? layer()->cornerRadius() : ControlLook::kCornerRadius;
    ControlLook::drawFace(context, bounds(), *face, default_ ? *face : *NSColor::separatorColor(), radius);
    if (isHighlighted()) {
        context.fill(context.pixelAligned(bounds()), radius, *NSColor::colorWithWhite(0, 0.15));
    }
    if (showsFocus()) ControlLook::drawFocusRing(context, bounds(), default_);
}

double NSButton::contentStart(const Content& shown, NSRect inside) const {
    const double room = inside.size.width - std::min(shown.width(), inside.size.width);
    switch (alignment()) {
        case NSTextAlignment::Left:
            return inside.origin.x;
        case NSTextAlignment::Center:
            return inside.origin.x + room / 2;
        case NSTextAlignment::Right:
            return inside.origin.x + room;
        case NSTextAlignment::Justified:
        case NSTextAlignment::Natural:
            break;
    }
    return inside.origin.x + (shown.measure.isRightToLeft ? room : 0);
}

void NSButton::drawContent(GraphicsContext& context) const {
    const NSRect inside = bounds().insetBy(ControlLook::kPadding, 0);
    if (inside.isEmpty()) return;
    const Content shown = content(std::max(0.0, inside.size.height - 2 * ControlLook::kImageMargin));
    const bool mirrored = userInterfaceLayoutDirection() == NSUserInterfaceLayoutDirection::RightToLeft;
    const double start = contentStart(shown, inside);
    const double width = std::min(shown.width(), inside.size.width);
    const double titleWidth = std::max(0.0, width - shown.image.width - shown.gap);

    const double imageX = mirrored ? start + width - shown.image.width : start;
    const double imageY = (inside.size.height - shown.image.height) / 2;
    if (image_)
        image_->drawInRect(context.pixelAligned({imageX, imageY, shown.image.width, shown.image.height}));

    const double titleX = mirrored ? start : start + shown.image.width + shown.gap;
    const auto color = default_ ? NSColor::alternateSelectedControlTextColor() : NSColor::textColor();
    const TextLayout line(
        title_, usedFont(),
        {.width = titleWidth, .alignment = alignment(), .lineBreak = LineBreakMode::TruncateTail});
    context.drawTextLine(line, {titleX, inside.origin.y, titleWidth, inside.size.height}, *color);
}

}  // namespace kx
