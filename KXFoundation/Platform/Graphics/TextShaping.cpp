// SPDX-License-Identifier: MIT

#include <algorithm>
#include <utility>

#include <hb.h>
#include <pango/pango.h>

#include <KXFoundation/Platform/Graphics/FontDescription.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/TextShaping.h>
#include <KXFoundation/Platform/Graphics/ThreadTexts.h>
#include <KXFoundation/Platform/Graphics/UsableText.h>

namespace kx {

namespace {

constexpr double kPoint = 1.0 / PANGO_SCALE;  // HarfBuzz's fonts have the same unit as Pango's

bool isPrintableAscii(std::string_view text) noexcept {
    return std::ranges::all_of(text, [](char c) { return c >= ' ' && c <= '~'; });
}

/// A line has no line ends; their letters would show as boxes.
void replaceLineEnds(std::string& text) {
    std::ranges::replace_if(
        text, [](char c) { return c >= '\t' && c <= '\r'; }, ' ');
}

std::shared_ptr<NSFont> fontOf(const StyledText& piece) {
    return piece.font ? piece.font : NSFont::systemFontOfSize(0);
}

struct AttributesDeleter {
    void operator()(PangoAttrList* attributes) const { pango_attr_list_unref(attributes); }
};
using Attributes = std::unique_ptr<PangoAttrList, AttributesDeleter>;

void addFont(PangoAttrList* attributes, const NSFont& font, std::size_t from, std::size_t to) {
    PangoAttribute* attribute = pango_attr_font_desc_new(describedFont(font).get());
    attribute->start_index = static_cast<guint>(from);
    attribute->end_index = static_cast<guint>(to);
    pango_attr_list_insert(attributes, attribute);
}

struct BufferDeleter {
    void operator()(hb_buffer_t* buffer) const { hb_buffer_destroy(buffer); }
};

/// One for each thread: it keeps its memory from line to line.
hb_buffer_t* threadBuffer() {
    thread_local const std::unique_ptr<hb_buffer_t, BufferDeleter> buffer(hb_buffer_create());
    return buffer.get();
}

}  // namespace

void TextShaping::run() {
    if (isSimple()) {
        shapeSimply();
    } else {
        shapeFully();
    }
}

bool TextShaping::isSimple() {
    double room = kWidestLine;
    for (const StyledText& piece : pieces_) {
        const auto font = fontOf(piece);
        if (piece.text.size() > letterLimit(font->pointSize(), room)) return false;
        room -= double(piece.text.size()) * font->pointSize();
        fonts_.push_back(texts_.glyphFont(*font));
        if (!fonts_.back() || !fonts_.back()->asciiShaper() || !isPrintableAscii(piece.text)) return false;
    }
    return true;
}

void TextShaping::shapeSimply() {
    hb_buffer_t* buffer = threadBuffer();
    for (std::size_t i = 0; i < pieces_.size(); ++i) {
        if (!pieces_[i].text.empty()) shapeSimplePiece(i, buffer);
    }
}

void TextShaping::shapeSimplePiece(std::size_t piece, hb_buffer_t* buffer) {
    const std::string_view text = pieces_[piece].text;
    hb_buffer_clear_contents(buffer);
    hb_buffer_add_latin1(buffer, reinterpret_cast<const std::uint8_t*>(text.data()), int(text.size()), 0,
                         int(text.size()));
    hb_buffer_set_direction(buffer, HB_DIRECTION_LTR);
    hb_buffer_set_script(buffer, HB_SCRIPT_LATIN);
    static const hb_language_t language = hb_language_from_string("en", -1);  // as TextContext's
    hb_buffer_set_language(buffer, language);
    hb_shape(fonts_[piece]->asciiShaper(), buffer, nullptr, 0);

    unsigned count = 0;
    const hb_glyph_info_t* glyphs = hb_buffer_get_glyph_infos(buffer, &count);
    const hb_glyph_position_t* places = hb_buffer_get_glyph_positions(buffer, nullptr);
    line_.glyphs_.reserve(line_.glyphs_.size() + count);
    beginRun(fonts_[piece], piece, false);
    for (unsigned i = 0; i < count; ++i) {
        add(glyphs[i].codepoint, places[i].x_offset, -places[i].y_offset, places[i].x_advance);
    }
}

void TextShaping::shapeFully() {
    std::string text;
    const Attributes attributes(pango_attr_list_new());
    double room = kWidestLine;
    for (const StyledText& piece : pieces_) {
        const auto font = fontOf(piece);
        const std::size_t start = text.size();
        text += usableText(piece.text, letterLimit(font->pointSize(), room));
        room -= double(text.size() - start) * font->pointSize();
        addFont(attributes.get(), *font, start, text.size());
        ends_.push_back(text.size());
    }
    replaceLineEnds(text);
    const int length = static_cast<int>(text.size());
    // Weak: the first strong letter decides.
    GList* logical = pango_itemize_with_base_dir(texts_.context.leftToRight(), PANGO_DIRECTION_WEAK_LTR,
                                                 text.data(), 0, length, attributes.get(), nullptr);
    GList* visual = pango_reorder_items(logical);
    for (GList* at = visual; at; at = at->next) shapeItem(*static_cast<PangoItem*>(at->data), text);
    g_list_free(visual);
    g_list_free_full(logical, [](gpointer item) { pango_item_free(static_cast<PangoItem*>(item)); });
}

void TextShaping::shapeItem(PangoItem& item, const std::string& text) {
    if (!item.analysis.font) return;  // no font installed
    PangoGlyphString* glyphs = pango_glyph_string_new();
    pango_shape_item(&item, text.data(), static_cast<int>(text.size()), nullptr, glyphs, PANGO_SHAPE_NONE);
    beginRun(texts_.glyphFont(item.analysis.font), pieceAt(static_cast<std::size_t>(item.offset)),
             item.analysis.level % 2 == 1);
    for (int i = 0; i < glyphs->num_glyphs; ++i) {
        const PangoGlyphInfo& info = glyphs->glyphs[i];
        add(info.glyph, info.geometry.x_offset, info.geometry.y_offset, info.geometry.width);
    }
    pango_glyph_string_free(glyphs);
}

std::size_t TextShaping::pieceAt(std::size_t offset) const {
    return static_cast<std::size_t>(std::ranges::upper_bound(ends_, offset) - ends_.begin());
}

void TextShaping::beginRun(std::shared_ptr<GlyphFont> font, std::size_t piece, bool isRightToLeft) {
    line_.ascent_ = std::max(line_.ascent_, font->ascent());
    line_.descent_ = std::max(line_.descent_, font->descent());
    line_.runs_.push_back({std::move(font), piece, line_.glyphs_.size(), 0, isRightToLeft});
}

/// Offsets and advance in the unit that Pango and HarfBuzz share.
void TextShaping::add(std::uint32_t glyph, double dx, double dy, double advance) {
    // Pango marks letters that no font has; the font's own sign for them stands in.
    if (glyph != PANGO_GLYPH_EMPTY) {
        const std::uint32_t number = glyph & PANGO_GLYPH_UNKNOWN_FLAG ? 0 : glyph;
        line_.glyphs_.push_back({number, {line_.width_ + dx * kPoint, dy * kPoint}});
        ++line_.runs_.back().glyphCount;
    }
    line_.width_ += advance * kPoint;
}

}  // namespace kx
