// SPDX-License-Identifier: MIT

#include "pages/TextPage.h"

#include <algorithm>
#include <functional>

#include <KXFoundation/Localization/KXLocalizationUtils.h>
#include <KXFoundation/Platform/Foundation/NSMutableAttributedString.h>
#include <KXFoundation/Platform/Graphics/CGMutablePath.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/NSStringDrawing.h>
#include <KXFoundation/Platform/Graphics/TextLayout.h>
#include <KXFoundation/UI/KXUIUtils.h>

namespace gallery {

using namespace kx;

namespace {

using StyledLine = std::shared_ptr<NSMutableAttributedString>;

/// A view that is drawn by a function.
class Drawing : public Subclass<Drawing, NSView> {
  public:
    using Draw = std::function<void(GraphicsContext&, NSRect)>;
    bool init(Draw draw) {
        draw_ = std::move(draw);
        return Super::init();
    }
    void drawRect(GraphicsContext& context, NSRect) override { draw_(context, bounds()); }

  private:
    Draw draw_;
};

void addDrawing(Column& column, double height, Drawing::Draw draw) {
    column.add(make<Drawing>(std::move(draw)), height);
}

void append(StyledLine& line, std::string_view words, std::string_view font, double size,
            const std::shared_ptr<NSColor>& color) {
    DictionaryBuilder attributes;
    attributes.set(NSFontAttributeName, Value(NSFont::fontWithNameOrFallback(font, size)));
    attributes.set(NSForegroundColorAttributeName, Value(color));
    line->appendAttributedString(*NSAttributedString::initWithString(words, attributes.build()));
}

StyledLine styledLine() {
    auto line = NSMutableAttributedString::initWithString("");
    append(line, text("text.sample.first"), "serif-Bold", 46, NSColor::controlAccentColor());
    append(line, text("text.sample.second"), "sans-serif", 34, NSColor::textColor());
    append(line, text("text.sample.third"), "serif-Italic", 40, NSColor::secondaryLabelColor());
    return line;
}

StyledLine mixedLine() {
    auto line = NSMutableAttributedString::initWithString("");
    append(line, "Pier 12 · ", "sans-serif", 26, NSColor::textColor());
    append(line, "رصيف الميناء القديم", "serif", 30, NSColor::controlAccentColor());
    append(line, " · 港口 · Hafen", "sans-serif", 26, NSColor::textColor());
    return line;
}

/// Where a line of that width begins: on the side where the language's lines begin.
double startOf(double width, double room) {
    return directed({0, 0, width, 1}, std::max(room, width)).origin.x;
}

void addLine(Column& column, const StyledLine& line) {
    const NSSize size = NSAttributedString_Drawing::size(*line);
    constexpr double kOvershoot = 4;  // some letters stand out of their font's height
    addDrawing(column, size.height + 2 * kOvershoot, [=](GraphicsContext& context, NSRect bounds) {
        const double x = startOf(size.width, bounds.size.width);
        NSAttributedString_Drawing::drawAtPoint(*line, context, {x, kOvershoot});
    });
}

void addOutline(Column& column, const StyledLine& line) {
    const auto outline = CGMutablePath::path();
    KXUIUtils::renderNSAttributeString(line, outline);
    const NSRect box = outline->pathBoundingBox();
    constexpr double kMargin = 2;
    addDrawing(column, box.size.height + 2 * kMargin, [=](GraphicsContext& context, NSRect bounds) {
        const double x = startOf(box.size.width + 2 * kMargin, bounds.size.width) + kMargin;
        const GraphicsContext::SavedState state(context);
        context.translate(x - box.origin.x, kMargin - box.origin.y);
        context.stroke(box.insetBy(-1, -1), 0, 1, *NSColor::separatorColor());
        context.strokeLine({box.origin.x, 0}, {box.maxX(), 0}, 1,
                           *NSColor::separatorColor());  // the baseline
        outline->fill(context, *NSColor::controlAccentColor()->colorWithAlphaComponent(0.15));
        outline->stroke(context, 1, *NSColor::controlAccentColor());
    });
}

/// The sentence in a width, in the box that was measured for it.
struct Sample {
    const char* font;
    double size;
    double maxWidth;
};
constexpr Sample kSamples[] = {{"sans-serif", 13, 150}, {"serif", 16, 210}, {"sans-serif-Bold", 11, 120}};

void drawSample(GraphicsContext& context, NSPoint at, const Sample& sample, NSSize size) {
    context.stroke(NSRect(at, size).insetBy(-1, -1), 0, 1, *NSColor::controlAccentColor());
    const auto font = NSFont::fontWithNameOrFallback(sample.font, sample.size);
    context.drawText({text("text.sample.sentence"), font, {.width = size.width}}, at, *NSColor::textColor());
}

void addSamples(Column& column) {
    double height = 0;
    std::vector<NSSize> sizes;
    for (const auto& [name, size, maxWidth] : kSamples) {
        const auto font = NSFont::fontWithNameOrFallback(name, size);
        sizes.push_back(KXUIUtils::sizeWith(text("text.sample.sentence"), font, maxWidth));
        height = std::max(height, sizes.back().height);
    }
    addDrawing(column, height + 2, [=](GraphicsContext& context, NSRect bounds) {
        double x = 1;  // the boxes' lines are around the sizes
        for (std::size_t i = 0; i < sizes.size(); ++i) {
            const NSRect box = directed({{x, 1}, sizes[i]}, bounds.size.width);
            drawSample(context, box.origin, kSamples[i], sizes[i]);
            x += sizes[i].width + 24;
        }
    });
}

}  // namespace

void TextPage::build(Column& column, Gallery&) {
    column.title(text("text.title"));
    column.paragraph(text("text.explanation"));
    column.caption(text("text.styled"));
    const StyledLine styled = styledLine();
    addLine(column, styled);
    column.caption(text("text.outline"));
    addOutline(column, styled);
    column.caption(text("text.sizes"));
    addSamples(column);
    column.caption(text("text.mixed"));
    const StyledLine mixed = mixedLine();
    addLine(column, mixed);
    addOutline(column, mixed);
}

}  // namespace gallery
