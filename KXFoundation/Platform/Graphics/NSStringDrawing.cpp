// SPDX-License-Identifier: MIT

#include <cmath>

#include <KXFoundation/Platform/Foundation/NSAttributedString.h>
#include <KXFoundation/Platform/Graphics/LaidOutText.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/NSStringDrawing.h>
#include <KXFoundation/Platform/Graphics/TextLine.h>

namespace kx {

namespace {

std::shared_ptr<const TextLine> lineOf(const NSAttributedString& text) {
    std::vector<StyledText> pieces;
    for (const auto& [range, attributes] : text.runs()) {
        pieces.push_back({std::string_view(text.string()).substr(range.location, range.length),
                          objectCast<NSFont>(attributes[NSFontAttributeName].asObject())});
    }
    return TextLine::layOut(pieces);
}

std::shared_ptr<NSColor> colorOf(const NSAttributedString::Run& run) {
    auto color = objectCast<NSColor>(run.attributes[NSForegroundColorAttributeName].asObject());
    return color ? color : NSColor::textColor();
}

}  // namespace

NSRect NSString_Drawing::boundingRectWithSize(std::string_view text, NSSize size,
                                              NSStringDrawingOptions options,
                                              const std::shared_ptr<NSFont>& font) {
    if (!font) return boundingRectWithSize(text, size, options, NSFont::systemFontOfSize(0));
    const bool fromTop = options == NSStringDrawingOptions::UsesLineFragmentOrigin;
    TextFlow flow;
    if (fromTop && size.width > 0) flow.width = size.width;
    const TextMeasure measure = LaidOutText::measureOf(text, font, flow);
    return {{0, fromTop ? 0 : -measure.firstBaseline}, measure.size};
}

NSSize NSAttributedString_Drawing::size(const NSAttributedString& text) {
    const auto line = lineOf(text);
    return {line->width(), line->ascent() + line->descent()};
}

void NSAttributedString_Drawing::drawAtPoint(const NSAttributedString& text, GraphicsContext& context,
                                             NSPoint topLeft) {
    const auto line = lineOf(text);
    const NSPoint baseline{topLeft.x, topLeft.y + line->ascent()};
    for (const TextLine::Run& run : line->runs()) {
        line->drawRun(run, context, baseline, *colorOf(text.runs()[run.piece]));
    }
}

}  // namespace kx
