// SPDX-License-Identifier: MIT

#include <pango/pangocairo.h>
#include <pango/pangofc-fontmap.h>

#include <KXFoundation/Platform/Graphics/LoadedFonts.h>
#include <KXFoundation/Platform/Graphics/TextContext.h>

namespace kx {

namespace {

PangoFontMap* makeFontMap(const FontSource& source) {
    PangoFontMap* map = pango_cairo_font_map_new_for_font_type(CAIRO_FONT_TYPE_FT);
    pango_fc_font_map_set_config(PANGO_FC_FONT_MAP(map), source.loaded().configuration);
    return map;
}

PangoContext* makeContext(PangoFontMap* map, PangoDirection direction) {
    PangoContext* context = pango_font_map_create_context(map);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
    cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
    cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
    pango_cairo_context_set_font_options(context, options);
    cairo_font_options_destroy(options);
    pango_context_set_base_dir(context, direction);
    pango_context_set_round_glyph_positions(context, FALSE);
    // A fixed language, so that lines break and letters look the same whatever the process's locale is.
    pango_context_set_language(context, pango_language_from_string("en"));
    return context;
}

}  // namespace

TextContext::TextContext(std::shared_ptr<FontSource> source)
    : source_(std::move(source)),
      fontMap_(makeFontMap(*source_)),
      leftToRight_(makeContext(fontMap_, PANGO_DIRECTION_LTR)),
      rightToLeft_(makeContext(fontMap_, PANGO_DIRECTION_RTL)) {}

TextContext::~TextContext() {
    g_object_unref(leftToRight_);
    g_object_unref(rightToLeft_);
    g_object_unref(fontMap_);
}

}  // namespace kx
