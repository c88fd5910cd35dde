// SPDX-License-Identifier: MIT

#include <cmath>

#include <cairo.h>

#include <KXFoundation/Platform/Graphics/CGMutablePath.h>
#include <KXFoundation/Platform/Graphics/CairoAccess.h>
#include <KXFoundation/Platform/Graphics/CairoPaths.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/TextLine.h>
#include <KXFoundation/Platform/Graphics/TextShaping.h>
#include <KXFoundation/Platform/Graphics/ThreadTexts.h>

namespace kx {

namespace {

bool isLong(std::span<const StyledText> pieces) noexcept {
    std::size_t length = 0;
    for (const StyledText& piece : pieces) length += piece.text.size();
    return length > kLongText;
}

}  // namespace

std::shared_ptr<const TextLine> TextLine::layOut(std::span<const StyledText> pieces) {
    ThreadTexts& texts = *ThreadTexts::current();
    if (auto* found = texts.styledLines.find(pieces)) return *found;
    const std::shared_ptr<TextLine> line(new TextLine);
    TextShaping(texts, *line, pieces).run();
    return isLong(pieces) ? line : texts.styledLines.add(LineKey(pieces), line);
}

std::string TextLine::fontNameOf(const Run& run) const {
    return run.font->name();
}

void TextLine::addOutlinesOf(const Run& run, CGMutablePath& path) const {
    ThreadTexts& texts = *ThreadTexts::current();
    path.reserve(16 * run.glyphCount, 32 * run.glyphCount);  // about what Latin letters have
    for (const Glyph& glyph : glyphsOf(run)) {
        path.addPath(texts.outline(*run.font, glyph.number), glyph.position);
    }
}

void TextLine::drawRun(const Run& run, GraphicsContext& context, NSPoint baseline,
                       const NSColor& color) const {
    if (!std::isfinite(baseline.x + baseline.y)) return;
    const NSPoint origin = withinReach({baseline, {}}).origin;
    std::vector<cairo_glyph_t> glyphs;
    for (const Glyph& glyph : glyphsOf(run)) {
        glyphs.push_back({glyph.number, origin.x + glyph.position.x, origin.y + glyph.position.y});
    }
    const ColorComponents c = color.components();
    cairo_t* cairo = cairoHandle(context);
    cairo_set_source_rgba(cairo, c.red, c.green, c.blue, c.alpha);
    cairo_set_scaled_font(cairo, run.font->scaledFont());
    cairo_show_glyphs(cairo, glyphs.data(), static_cast<int>(glyphs.size()));
}

}  // namespace kx
