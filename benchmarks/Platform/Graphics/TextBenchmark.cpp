// SPDX-License-Identifier: MIT

// text-measure/again/<who>: the size of one line of 30 characters that was measured before.
// text-outline/30-characters/<who>: the outline of such a line as a path of its own, for two texts by turns.
// Shaped every time by both; kx remembers the outlines of the glyphs, not the line.
//
// The peer is Pango as its manual uses it: one context kept, a layout for each measure, and for the outlines
// one layout whose text changes, traced by Cairo.
#include <cmath>
#include <string>
#include <string_view>
#include <vector>

#include <benchmark/benchmark.h>
#include <pango/pangocairo.h>

#include <KXFoundation/Platform/Foundation/NSAttributedString.h>
#include <KXFoundation/Platform/Graphics/CGMutablePath.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/NSStringDrawing.h>
#include <KXFoundation/UI/KXUIUtils.h>

#include "benchmarks/peers/Check.h"

namespace {

constexpr std::string_view kTexts[] = {"The quick brown fox jumps over", "Pack my box with 5 dozen jugs."};
constexpr const char* kFamily = "DejaVu Sans";
constexpr int kSize = 14;

class PangoLine {
  public:
    PangoLine() {
        cairo_surface_t* surface = cairo_image_surface_create(CAIRO_FORMAT_ARGB32, 600, 60);
        cairo_ = cairo_create(surface);
        cairo_surface_destroy(surface);
        context_ = pango_cairo_create_context(cairo_);
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        pango_cairo_context_set_font_options(context_, options);
        cairo_font_options_destroy(options);
        pango_context_set_round_glyph_positions(context_, FALSE);
        font_ = pango_font_description_new();
        pango_font_description_set_family(font_, kFamily);
        pango_font_description_set_absolute_size(font_, kSize * PANGO_SCALE);
        layout_ = freshLayout();
    }
    ~PangoLine() {
        g_object_unref(layout_);
        pango_font_description_free(font_);
        g_object_unref(context_);
        cairo_destroy(cairo_);
    }
    PangoLine(const PangoLine&) = delete;
    PangoLine& operator=(const PangoLine&) = delete;

    [[nodiscard]] double measure(std::string_view text) const {
        PangoLayout* layout = freshLayout();
        pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
        PangoRectangle extents;
        pango_layout_get_extents(layout, nullptr, &extents);
        g_object_unref(layout);
        return extents.width / double{PANGO_SCALE};
    }
    [[nodiscard]] cairo_path_t* outline(std::string_view text) const {
        pango_layout_set_text(layout_, text.data(), static_cast<int>(text.size()));
        cairo_new_path(cairo_);
        pango_cairo_layout_path(cairo_, layout_);
        return cairo_copy_path(cairo_);
    }
    [[nodiscard]] double outlineWidth(std::string_view text) const {
        cairo_path_destroy(outline(text));
        double left = 0, top = 0, right = 0, bottom = 0;
        cairo_path_extents(cairo_, &left, &top, &right, &bottom);
        return right - left;
    }

  private:
    [[nodiscard]] PangoLayout* freshLayout() const {
        PangoLayout* layout = pango_layout_new(context_);
        pango_layout_set_font_description(layout, font_);
        return layout;
    }

    cairo_t* cairo_;
    PangoContext* context_;
    PangoFontDescription* font_;
    PangoLayout* layout_;
};

std::shared_ptr<kx::NSFont> font() {
    return kx::NSFont::fontWithName(kFamily, kSize);
}

std::shared_ptr<kx::NSAttributedString> styled(std::string_view text) {
    return kx::NSAttributedString::initWithString(
        text, kx::DictionaryBuilder().set(kx::NSFontAttributeName, kx::Value(font())).build());
}

std::shared_ptr<kx::CGMutablePath> outlined(const std::shared_ptr<kx::NSAttributedString>& text) {
    auto path = kx::CGMutablePath::path();
    kx::KXUIUtils::renderNSAttributeString(text, path);
    return path;
}

[[maybe_unused]] const bool equalAnswers = [] {
    const PangoLine pango;
    for (const std::string_view text : kTexts) {
        const double width = kx::KXUIUtils::sizeWith(text, font()).width;
        peers::checkEqualAnswers(std::abs(width - pango.measure(text)) < 0.05, "text-measure/again");
        const double ink = outlined(styled(text))->pathBoundingBox().size.width;
        peers::checkEqualAnswers(std::abs(ink - pango.outlineWidth(text)) < 0.05,
                                 "text-outline/30-characters");
    }
    return true;
}();

void measureWithKX(benchmark::State& state) {
    const auto plain = font();
    for (auto _ : state) benchmark::DoNotOptimize(kx::KXUIUtils::sizeWith(kTexts[0], plain));
}
BENCHMARK(measureWithKX)->Name("text-measure/again/kx");

void measureWithPango(benchmark::State& state) {
    const PangoLine pango;
    for (auto _ : state) benchmark::DoNotOptimize(pango.measure(kTexts[0]));
}
BENCHMARK(measureWithPango)->Name("text-measure/again/pango");

void outlineWithKX(benchmark::State& state) {
    const std::shared_ptr<kx::NSAttributedString> texts[] = {styled(kTexts[0]), styled(kTexts[1])};
    std::size_t turn = 0;
    for (auto _ : state) benchmark::DoNotOptimize(outlined(texts[turn ^= 1])->points().data());
}
BENCHMARK(outlineWithKX)->Name("text-outline/30-characters/kx");

/// Texts of 30 characters, more than any memory of lines holds.
std::vector<std::string> newTexts() {
    std::vector<std::string> texts;
    for (int i = 1000; i < 5000; ++i) texts.push_back("Ferry " + std::to_string(i) + " for the quiet bays.");
    return texts;
}

void outlineNewTextWithKX(benchmark::State& state) {
    std::vector<std::shared_ptr<kx::NSAttributedString>> texts;
    for (const std::string& text : newTexts()) texts.push_back(styled(text));
    std::size_t turn = 0;
    for (auto _ : state) benchmark::DoNotOptimize(outlined(texts[turn++ % texts.size()])->points().data());
}
BENCHMARK(outlineNewTextWithKX)->Name("text-outline/new-text/kx");

void outlineNewTextWithPango(benchmark::State& state) {
    const PangoLine pango;
    const auto texts = newTexts();
    std::size_t turn = 0;
    for (auto _ : state) {
        cairo_path_t* path = pango.outline(texts[turn++ % texts.size()]);
        benchmark::DoNotOptimize(path->data);
        cairo_path_destroy(path);
    }
}
BENCHMARK(outlineNewTextWithPango)->Name("text-outline/new-text/pango");

void outlineWithPango(benchmark::State& state) {
    const PangoLine pango;
    std::size_t turn = 0;
    for (auto _ : state) {
        cairo_path_t* path = pango.outline(kTexts[turn ^= 1]);
        benchmark::DoNotOptimize(path->data);
        cairo_path_destroy(path);
    }
}
BENCHMARK(outlineWithPango)->Name("text-outline/30-characters/pango");

}  // namespace
