// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <pango/pangocairo.h>

#include <KXFoundation/Platform/Graphics/FontDescription.h>
#include <KXFoundation/Platform/Graphics/LaidOutText.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/ThreadTexts.h>
#include <KXFoundation/Platform/Graphics/UsableText.h>

namespace kx {

namespace {

double points(int units) noexcept {
    return units / double{PANGO_SCALE};
}
int units(double points) noexcept {
    return static_cast<int>(std::lround(points * PANGO_SCALE));
}

bool isBlank(gunichar letter) {
    return letter == ' ' || letter == '\n' || letter == '\t';
}

/// The text with a zero-width space after every 256 letters that stand together without a blank, and no more
/// than 256 spaces together, which hang at a line's end all the same. Pango's search for the end of a line is
/// quadratic in the length of such a run: 64 KiB of one took 27 s, and takes 0.6 s like this.
std::string withBreaks(const std::string& text) {
    constexpr int kLongestRun = 256;
    if (text.size() <= kLongestRun) return text;
    std::string broken;
    int run = 0;
    int spaces = 0;
    const char* next = nullptr;
    for (const char* at = text.c_str(); *at; at = next) {
        next = g_utf8_next_char(at);
        const gunichar letter = g_utf8_get_char(at);
        spaces = letter == ' ' ? spaces + 1 : 0;
        if (spaces > kLongestRun) continue;
        if (run >= kLongestRun && !g_unichar_ismark(letter)) {
            broken += "\u200B";
            run = 0;
        }
        broken.append(at, next);
        run = isBlank(letter) ? 0 : run + 1;
    }
    return broken;
}

bool hasWidth(const TextFlow& flow) noexcept {
    return flow.width < kWidestLine;
}
bool breaksLines(const TextFlow& flow) noexcept {
    return hasWidth(flow) && flow.lineBreak != LineBreakMode::Clip;
}

std::uint32_t lineLimit(const TextFlow& flow) noexcept {
    if (flow.maximumLines == 0 && flow.lineBreak == LineBreakMode::TruncateTail) return 1;
    return std::min<std::uint32_t>(flow.maximumLines, 1'000'000);
}

/// A word that is broken because it alone is too wide gets no hyphen: it may be a name or an address.
void breakWithoutHyphens(PangoLayout* layout) {
    PangoAttrList* attributes = pango_attr_list_new();
    pango_attr_list_insert(attributes, pango_attr_insert_hyphens_new(FALSE));
    pango_layout_set_attributes(layout, attributes);
    pango_attr_list_unref(attributes);
}

void setFlow(PangoLayout* layout, const TextFlow& flow) {
    pango_layout_set_auto_dir(layout, flow.direction == WritingDirection::Natural);
    pango_layout_set_justify(layout, flow.alignment == NSTextAlignment::Justified);
    if (breaksLines(flow)) {
        pango_layout_set_width(layout, units(std::max(flow.width, 0.0)));
        pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
        if (lineLimit(flow) != 1) breakWithoutHyphens(layout);
    }
    if (const std::uint32_t limit = lineLimit(flow)) {
        pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
        pango_layout_set_height(layout, -static_cast<int>(limit));
    }
}

PangoLayout* makeLayout(const TextContext& context, const TextLayout& text) {
    const bool rightToLeft = text.flow().direction == WritingDirection::RightToLeft;
    PangoLayout* layout = pango_layout_new(rightToLeft ? context.rightToLeft() : context.leftToRight());
    std::string usable = usableText(text.text(), letterLimit(text.font()->pointSize()));
    if (breaksLines(text.flow())) usable = withBreaks(usable);
    pango_layout_set_text(layout, usable.data(), static_cast<int>(usable.size()));
    pango_layout_set_font_description(layout, describedFont(*text.font()).get());
    setFlow(layout, text.flow());
    return layout;
}

}  // namespace

LaidOutText::LaidOutText(const TextContext& context, const TextLayout& text)
    : layout_(makeLayout(context, text)), flow_(text.flow()) {
    collectLines();
}

LaidOutText::~LaidOutText() {
    g_object_unref(layout_);
}

void LaidOutText::collectLines() {
    PangoLayoutIter* iterator = pango_layout_get_iter(layout_);
    do {
        PangoRectangle extents;
        pango_layout_iter_get_line_extents(iterator, nullptr, &extents);
        PangoLayoutLine* line = pango_layout_iter_get_line_readonly(iterator);
        lines_.push_back({line, points(extents.width), points(pango_layout_iter_get_baseline(iterator)),
                          pango_layout_line_get_resolved_direction(line) == PANGO_DIRECTION_RTL});
        measure_.size.width = std::max(measure_.size.width, lines_.back().width);
        measure_.size.height = std::max(measure_.size.height, points(extents.y + extents.height));
    } while (pango_layout_iter_next_line(iterator));
    pango_layout_iter_free(iterator);
    measure_.firstBaseline = lines_.front().baseline;
    measure_.isRightToLeft = lines_.front().isRightToLeft;
    measure_.lineCount = static_cast<std::uint32_t>(lines_.size());
    measure_.isTruncated = pango_layout_is_ellipsized(layout_);
}

/// How far the line stands from the left edge. Pango's own placing is not used: it aligns by the paragraph
/// only where the direction is forced.
double LaidOutText::indentOf(const Line& line) const noexcept {
    const double room = (hasWidth(flow_) ? flow_.width : measure_.size.width) - line.width;
    switch (flow_.alignment) {
        case NSTextAlignment::Left:
            return 0;
        case NSTextAlignment::Right:
            return room;
        case NSTextAlignment::Center:
            return room / 2;
        case NSTextAlignment::Justified:
        case NSTextAlignment::Natural:
            break;
    }
    return line.isRightToLeft ? room : 0;
}

const TextMeasure& LaidOutText::emptyLine(const std::shared_ptr<NSFont>& font) const {
    if (!emptyLine_) emptyLine_ = measureOf("", font, {});
    return *emptyLine_;
}

void LaidOutText::draw(cairo_t* cairo, NSPoint topLeft) const {
    for (const Line& line : lines_) {
        cairo_move_to(cairo, topLeft.x + indentOf(line), topLeft.y + line.baseline);
        pango_cairo_show_layout_line(cairo, line.line);
    }
    cairo_new_path(cairo);
}

std::shared_ptr<const LaidOutText> LaidOutText::of(const TextLayout& text) {
    ThreadTexts& texts = *ThreadTexts::current();
    auto& lines = text.text().size() > kLongText ? texts.longLines : texts.lines;
    const TextQuery query{text.text(), text.font()->identity(), text.flow()};
    if (auto* found = lines.find(query)) return *found;
    return lines.add(TextKey(query), std::make_shared<LaidOutText>(texts.context, text));
}

TextMeasure LaidOutText::measureOf(std::string_view text, const std::shared_ptr<NSFont>& font,
                                   const TextFlow& flow) {
    if (text.size() > kLongText) return of({text, font, flow})->measure();
    auto& measures = ThreadTexts::current()->measures;
    const TextQuery query{text, font->identity(), flow};
    if (const TextMeasure* found = measures.find(query)) return *found;
    return measures.add(TextKey(query), of({text, font, flow})->measure());
}

}  // namespace kx
