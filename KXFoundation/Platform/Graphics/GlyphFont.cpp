// SPDX-License-Identifier: MIT

#include <atomic>

#include <hb.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-font.h>

#include <KXFoundation/Platform/Graphics/CGMutablePath.h>
#include <KXFoundation/Platform/Graphics/GlyphFont.h>
#include <KXFoundation/Platform/Graphics/GlyphOutline.h>

namespace kx {

namespace {

std::uint32_t nextNumber() noexcept {
    static std::atomic<std::uint32_t> last = 0;
    return ++last;
}

bool isSet(FcPattern* pattern, const char* flag) {
    FcBool set = FcFalse;
    return FcPatternGetBool(pattern, flag, 0, &set) == FcResultMatch && set;
}

/// Whether the engine takes the file as it is.
bool isUnaltered(FcPattern* pattern) {
    if (isSet(pattern, FC_EMBOLDEN) || isSet(pattern, FC_VARIABLE)) return false;
    for (const char* alteration : {FC_MATRIX, FC_FONT_FEATURES, FC_FONT_VARIATIONS}) {
        FcValue value;
        if (FcPatternGet(pattern, alteration, 0, &value) == FcResultMatch) return false;
    }
    return true;
}

bool holdsAscii(hb_font_t* font) {
    for (hb_codepoint_t letter = ' '; letter <= '~'; ++letter) {
        hb_codepoint_t glyph = 0;
        if (!hb_font_get_nominal_glyph(font, letter, &glyph)) return false;
    }
    return true;
}

/// HarfBuzz over the font's own tables; the engine's own one is a call into the engine per glyph.
hb_font_t* makePlainFont(PangoFont* font) {
    hb_font_t* engine = pango_font_get_hb_font(font);
    int x = 0, y = 0;
    hb_font_get_scale(engine, &x, &y);
    hb_font_t* plain = hb_font_create(hb_font_get_face(engine));
    hb_font_set_scale(plain, x, x);
    return plain;
}

}  // namespace

GlyphFont::GlyphFont(PangoFont* font) : font_(PANGO_FONT(g_object_ref(font))), number_(nextNumber()) {
    scaledFont_ = pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(font));
    FcPattern* pattern = pango_fc_font_get_pattern(PANGO_FC_FONT(font));
    hasOutlines_ = isSet(pattern, FC_OUTLINE);
    if (hasOutlines_ && isUnaltered(pattern)) plain_ = makePlainFont(font);
    holdsAscii_ = plain_ && holdsAscii(plain_);
    PangoFontMetrics* metrics = pango_font_get_metrics(font, nullptr);
    ascent_ = pango_font_metrics_get_ascent(metrics) / double{PANGO_SCALE};
    descent_ = pango_font_metrics_get_descent(metrics) / double{PANGO_SCALE};
    pango_font_metrics_unref(metrics);
}

GlyphFont::~GlyphFont() {
    if (plain_) hb_font_destroy(plain_);
    g_object_unref(font_);
}

std::string GlyphFont::name() const {
    PangoFontDescription* description = pango_font_describe(font_);
    pango_font_description_unset_fields(description, PANGO_FONT_MASK_SIZE);
    char* text = pango_font_description_to_string(description);
    std::string name = text;
    g_free(text);
    pango_font_description_free(description);
    return name;
}

std::shared_ptr<const CGMutablePath> GlyphFont::makeOutline(std::uint32_t glyph) const {
    if (!hasOutlines_) return CGMutablePath::path();
    return plain_ ? readOutline(plain_, glyph) : traceOutline(scaledFont_, glyph);
}

}  // namespace kx
