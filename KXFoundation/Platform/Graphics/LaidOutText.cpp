#include <algorithm>
#include <cmath>
#include <functional>
#include <optional>

#include <pango/pangocairo.h>

#include <KXFoundation/Platform/Graphics/FontFace.h>
#include <KXFoundation/Platform/Graphics/LaidOutText.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/RecentCache.h>
#include <KXFoundation/Platform/Graphics/TextContext.h>

namespace kx {

namespace {

// Pango counts in 1/1024 point in 32 bits, so 2,097,151 points are the end of its world; half of that is
// ours.
constexpr double kWidestLine = 1'000'000;
constexpr std::size_t kLongestText = 65'536;

double points(int units) noexcept {
    return units / double{PANGO_SCALE};
}
int units(double points) noexcept {
    return static_cast<int>(std::lround(points * PANGO_SCALE));
}

/// The text that is set: whole characters of valid UTF-8 up to the limit that its size allows.
std::string usableText(const std::string& text, double pointSize) {
    const std::size_t limit = std::min(kLongestText, static_cast<std::size_t>(kWidestLine / pointSize));
    std::string_view part = std::string_view(text).substr(0, limit);
    if (part.size() < text.size()) {
        while (!part.empty() && (static_cast<unsigned char>(text[part.size()]) & 0xC0) == 0x80)
            part.remove_suffix(1);
    }
    char* valid = g_utf8_make_valid(part.data(), static_cast<gssize>(part.size()));
    std::string answer = valid;
    g_free(valid);
    return answer;
}

bool isBlank(gunichar letter) {
    return letter == ' ' || letter == '\n' || letter == '\t';
}

/// The text with a zero-width space after every 256 letters that stand together without a blank. Pango's
/// search for the end of a line is quadratic in the length of such a run: 64 KiB of one took 27 s without
/// these, 0.6 s with them.
std::string withBreaks(const std::string& text) {
    constexpr int kLongestRun = 256;
    std::string broken;
    int run = 0;
    const char* next = nullptr;
    for (const char* at = text.c_str(); *at; at = next) {
        next = g_utf8_next_char(at);
        const gunichar letter = g_utf8_get_char(at);
        if (run >= kLongestRun && !g_unichar_ismark(letter)) {
            broken += "\u200B";
            run = 0;
        }
        broken.append(at, next);
        run = isBlank(letter) ? 0 : run + 1;
    }
    return broken;
}

void setFont(PangoLayout* layout, const NSFont& font) {
    const FontFace& face = font.face();
    PangoFontDescription* description = pango_font_description_new();
    pango_font_description_set_family(description, face.family.c_str());
    pango_font_description_set_weight(description, static_cast<PangoWeight>(face.weight));
    pango_font_description_set_style(description, face.italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    pango_font_description_set_absolute_size(description, font.pointSize() * PANGO_SCALE);
    pango_layout_set_font_description(layout, description);
    pango_font_description_free(description);
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

void setFlow(PangoLayout* layout, const TextFlow& flow) {
    pango_layout_set_auto_dir(layout, flow.direction == WritingDirection::Natural);
    pango_layout_set_justify(layout, flow.alignment == NSTextAlignment::Justified);
    if (breaksLines(flow)) {
        pango_layout_set_width(layout, units(std::max(flow.width, 0.0)));
        pango_layout_set_wrap(layout, PANGO_WRAP_WORD_CHAR);
    }
    if (const std::uint32_t limit = lineLimit(flow)) {
        pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
        pango_layout_set_height(layout, -static_cast<int>(limit));
    }
}

PangoLayout* makeLayout(const TextContext& context, const TextLayout& text) {
    const bool rightToLeft = text.flow().direction == WritingDirection::RightToLeft;
    PangoLayout* layout = pango_layout_new(rightToLeft ? context.rightToLeft() : context.leftToRight());
    std::string usable = usableText(text.text(), text.font()->pointSize());
    if (breaksLines(text.flow())) usable = withBreaks(usable);
    pango_layout_set_text(layout, usable.data(), static_cast<int>(usable.size()));
    setFont(layout, *text.font());
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

void LaidOutText::draw(cairo_t* cairo, NSPoint topLeft) const {
    for (const Line& line : lines_) {
        cairo_move_to(cairo, topLeft.x + indentOf(line), topLeft.y + line.baseline);
        pango_cairo_show_layout_line(cairo, line.line);
    }
    cairo_new_path(cairo);
}

namespace {

struct TextKey {
    std::string text;
    std::uint64_t font;
    TextFlow flow;
    bool operator==(const TextKey&) const = default;
};

struct TextKeyHash {
    std::size_t operator()(const TextKey& key) const noexcept {
        const std::size_t text = std::hash<std::string>{}(key.text);
        const std::size_t width = std::hash<double>{}(key.flow.width);
        return (text * 31 + std::hash<std::uint64_t>{}(key.font)) * 31 + width;
    }
};

/// What one thread remembers. Lines hold some KiB each, a measure about a hundred bytes.
struct ThreadTexts {
    TextContext context;
    RecentCache<TextKey, std::shared_ptr<const LaidOutText>, TextKeyHash> lines{128};
    RecentCache<TextKey, std::shared_ptr<const LaidOutText>, TextKeyHash> longLines{1};
    RecentCache<TextKey, TextMeasure, TextKeyHash> measures{2048};
};

constexpr std::size_t kLongText = 4096;  // bytes; of texts beyond that only the latest are remembered

ThreadTexts& threadTexts() {
    thread_local std::unique_ptr<ThreadTexts> texts;
    if (!texts || texts->context.source() != &FontSource::slot().current()) {
        texts.reset();
        texts.reset(new ThreadTexts{TextContext(FontSource::slot().shared())});
    }
    return *texts;
}

TextKey keyOf(const TextLayout& text) {
    return {text.text(), text.font()->identity(), text.flow()};
}

}  // namespace

std::shared_ptr<const LaidOutText> LaidOutText::of(const TextLayout& text) {
    ThreadTexts& texts = threadTexts();
    auto& lines = text.text().size() > kLongText ? texts.longLines : texts.lines;
    TextKey key = keyOf(text);
    if (auto* found = lines.find(key)) return *found;
    return lines.add(std::move(key), std::make_shared<LaidOutText>(texts.context, text));
}

TextMeasure LaidOutText::measureOf(const TextLayout& text) {
    if (text.text().size() > kLongText) return of(text)->measure();
    ThreadTexts& texts = threadTexts();
    TextKey key = keyOf(text);
    if (const TextMeasure* found = texts.measures.find(key)) return *found;
    return texts.measures.add(std::move(key), of(text)->measure());
}

}  // namespace kx
