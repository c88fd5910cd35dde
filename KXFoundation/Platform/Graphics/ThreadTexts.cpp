// SPDX-License-Identifier: MIT

#include <pango/pangocairo.h>

#include <KXFoundation/Platform/Graphics/CGMutablePath.h>
#include <KXFoundation/Platform/Graphics/FontDescription.h>
#include <KXFoundation/Platform/Graphics/LaidOutText.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/ThreadTexts.h>

namespace kx {

const std::shared_ptr<ThreadTexts>& ThreadTexts::current() {
    thread_local std::shared_ptr<ThreadTexts> texts;
    if (!texts || texts->context.source() != &FontSource::slot().current()) {
        texts.reset();
        texts = std::make_shared<ThreadTexts>(FontSource::slot().shared());
    }
    return texts;
}

std::shared_ptr<GlyphFont> ThreadTexts::glyphFont(const NSFont& font) {
    if (auto* found = fontsByIdentity_.find(font.identity())) return *found;
    PangoFont* loaded = pango_context_load_font(context.leftToRight(), describedFont(font).get());
    if (!loaded) return nullptr;
    auto made = glyphFont(loaded);
    g_object_unref(loaded);
    return fontsByIdentity_.add(font.identity(), std::move(made));
}

std::shared_ptr<GlyphFont> ThreadTexts::glyphFont(PangoFont* font) {
    if (auto* found = fonts_.find(font)) return *found;
    return fonts_.add(font, std::make_shared<GlyphFont>(font));
}

const CGMutablePath& ThreadTexts::outline(GlyphFont& font, std::uint32_t glyph) {
    const std::uint64_t key = std::uint64_t{font.number()} << 32 | glyph;
    if (auto* found = outlines_.find(key)) return **found;
    return *outlines_.add(key, font.makeOutline(glyph));
}

}  // namespace kx
