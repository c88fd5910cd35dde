#include <atomic>

#include <hb-ot.h>
#include <pango/pangocairo.h>
#include <pango/pangofc-font.h>

#include <KXFoundation/Platform/Graphics/CGMutablePath.h>
#include <KXFoundation/Platform/Graphics/GlyphFont.h>

namespace kx {

namespace {

std::uint32_t nextNumber() noexcept {
    static std::atomic<std::uint32_t> last = 0;
    return ++last;
}

/// Whether the engine takes the file as it is.
bool isUnaltered(PangoFont* font) {
    FcPattern* pattern = pango_fc_font_get_pattern(PANGO_FC_FONT(font));
    FcBool flag = FcFalse;
    if (FcPatternGetBool(pattern, FC_EMBOLDEN, 0, &flag) == FcResultMatch && flag) return false;
    if (FcPatternGetBool(pattern, FC_VARIABLE, 0, &flag) == FcResultMatch && flag) return false;
    if (FcPatternGetBool(pattern, FC_OUTLINE, 0, &flag) == FcResultMatch && !flag) return false;
    for (const char* alteration : {FC_MATRIX, FC_FONT_FEATURES, FC_FONT_VARIATIONS}) {
        FcValue value;
        if (FcPatternGet(pattern, alteration, 0, &value) == FcResultMatch) return false;
    }
    return true;
}

bool coversAscii(hb_font_t* font) {
    for (hb_codepoint_t letter = ' '; letter <= '~'; ++letter) {
        hb_codepoint_t glyph = 0;
        if (!hb_font_get_nominal_glyph(font, letter, &glyph)) return false;
    }
    return true;
}

/// HarfBuzz over the font's own tables: the engine's own is a call into the engine per glyph.
hb_font_t* makeAsciiShaper(PangoFont* font) {
    if (!isUnaltered(font)) return nullptr;
    hb_font_t* engine = pango_font_get_hb_font(font);
    int x = 0, y = 0;
    hb_font_get_scale(engine, &x, &y);
    hb_font_t* shaper = hb_font_create(hb_font_get_face(engine));
    hb_font_set_scale(shaper, x, x);
    if (coversAscii(shaper)) return shaper;
    hb_font_destroy(shaper);
    return nullptr;
}

/// Cairo keeps coordinates in 1/256 of a pixel, so outlines are traced at this many pixels to the em.
constexpr double kTracedSize = 2048;

cairo_t* makeTracer(cairo_scaled_font_t* font) {
    cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_A8, 1, 1);
    cairo_t* tracer = cairo_create(surface);
    cairo_surface_destroy(surface);
    cairo_matrix_t size;
    cairo_scaled_font_get_font_matrix(font, &size);
    const double scale = size.yy > 0 ? kTracedSize / size.yy : 1;
    cairo_scale(tracer, scale, scale);
    cairo_font_options_t* options = cairo_font_options_create();
    cairo_scaled_font_get_font_options(font, options);
    cairo_set_font_options(tracer, options);
    cairo_font_options_destroy(options);
    cairo_set_font_face(tracer, cairo_scaled_font_get_font_face(font));
    cairo_set_font_matrix(tracer, &size);
    return tracer;
}

NSPoint pointOf(const cairo_path_data_t& data) noexcept {
    return {data.point.x, data.point.y};
}

void addPiece(CGMutablePath& outline, const cairo_path_data_t* piece) {
    switch (piece->header.type) {
        case CAIRO_PATH_MOVE_TO:
            return outline.moveToPoint(pointOf(piece[1]));
        case CAIRO_PATH_LINE_TO:
            return outline.addLineToPoint(pointOf(piece[1]));
        case CAIRO_PATH_CURVE_TO:
            return outline.addCurveToPoint(pointOf(piece[1]), pointOf(piece[2]), pointOf(piece[3]));
        case CAIRO_PATH_CLOSE_PATH:
            return outline.closeSubpath();
    }
}

std::shared_ptr<const CGMutablePath> copiedPath(cairo_t* tracer) {
    auto outline = CGMutablePath::path();
    cairo_path_t* path = cairo_copy_path(tracer);
    for (int i = 0; i < path->num_data; i += path->data[i].header.length) {
        const bool leadsNowhere = path->data[i].header.type == CAIRO_PATH_MOVE_TO &&
                                  i + path->data[i].header.length == path->num_data;
        if (!leadsNowhere)
            addPiece(*outline, &path->data[i]);  // Cairo ends each path with a point of its own
    }
    cairo_path_destroy(path);
    return outline;
}

}  // namespace

GlyphFont::GlyphFont(PangoFont* font)
    : font_(PANGO_FONT(g_object_ref(font))), number_(nextNumber()), asciiShaper_(makeAsciiShaper(font)) {
    PangoFontMetrics* metrics = pango_font_get_metrics(font, nullptr);
    ascent_ = pango_font_metrics_get_ascent(metrics) / double{PANGO_SCALE};
    descent_ = pango_font_metrics_get_descent(metrics) / double{PANGO_SCALE};
    pango_font_metrics_unref(metrics);
}

GlyphFont::~GlyphFont() {
    if (tracer_) cairo_destroy(tracer_);
    if (asciiShaper_) hb_font_destroy(asciiShaper_);
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

cairo_scaled_font_t* GlyphFont::scaledFont() const noexcept {
    return pango_cairo_font_get_scaled_font(PANGO_CAIRO_FONT(font_));
}

std::shared_ptr<const CGMutablePath> GlyphFont::makeOutline(std::uint32_t glyph) {
    if (!tracer_) tracer_ = makeTracer(scaledFont());
    const cairo_glyph_t at{glyph, 0, 0};
    cairo_new_path(tracer_);
    cairo_glyph_path(tracer_, &at, 1);
    return copiedPath(tracer_);
}

}  // namespace kx
