// SPDX-License-Identifier: MIT

// view/tree-100/<who>: 100 layered labels, rounded and each of its own colour, all drawn again in a window of
// 800x600. view/one-label-changed/<who>: one of them gets a text that it has not had, and its rectangle is
// drawn again.
//
// The peer draws the same in bare Cairo and Pango calls: a surface and a context that are kept, a layout for
// each label whose text changes. Both draw into memory; neither shows it anywhere.
#include <algorithm>
#include <cmath>
#include <numbers>
#include <string>
#include <vector>

#include <benchmark/benchmark.h>
#include <pango/pangocairo.h>

#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/Platform/Views/WindowSurface.h>

#include "benchmarks/peers/Check.h"

namespace {

constexpr int kWide = 800;
constexpr int kHigh = 600;
constexpr std::size_t kLabels = 100;
constexpr std::size_t kChanged = 42;
constexpr double kRadius = 6;
constexpr const char* kFamily = "DejaVu Sans";
constexpr int kFontSize = 12;
constexpr double kTextLevel = 0.1;

kx::NSRect frameOf(std::size_t label) {
    return {double(label % 10) * 80 + 4, double(label / 10) * 60 + 4, 72, 52};
}

struct Shade {
    double red, green, blue;
};
Shade shadeOf(std::size_t label) {
    return {0.6 + double(label % 10) * 0.04, 0.6 + double(label / 10) * 0.04, 0.9};
}

std::string textOf(std::size_t number) {
    return "Pier " + std::to_string(1000 + number);
}

/// More than any memory of lines holds.
std::vector<std::string> newTexts() {
    std::vector<std::string> texts;
    for (std::size_t i = 0; i < 4000; ++i) texts.push_back(textOf(kLabels + i));
    return texts;
}

// Ours

/// Takes the window's pixels as they are.
class KeptSurface final : public kx::WindowSurface {
  public:
    explicit KeptSurface(kx::NSRect frame) : frame_(frame) {}
    [[nodiscard]] kx::NSSize size() const override { return frame_.size; }
    [[nodiscard]] double scale() const override { return 1; }
    void present(const kx::NSBitmapImageRep& bitmap, std::span<const kx::PixelRect>) override {
        shown_ = &bitmap;
        ++frames_;
    }
    void setFrame(kx::NSRect) override {}
    void setTitle(std::string_view) override {}
    void activate() override {}

    [[nodiscard]] std::span<const std::uint32_t> pixels() const { return shown_->pixels(); }
    [[nodiscard]] std::size_t frames() const { return frames_; }

  private:
    kx::NSRect frame_;
    const kx::NSBitmapImageRep* shown_ = nullptr;
    std::size_t frames_ = 0;
};

class KeptWindows final : public kx::WindowSystem {
  public:
    std::shared_ptr<kx::WindowSurface> makeSurface(kx::NSRect frame, Handler) override {
        return std::make_shared<KeptSurface>(frame);
    }
};

std::shared_ptr<kx::NSTextField> makeLabel(std::size_t number) {
    auto label = kx::make<kx::NSTextField>(frameOf(number));
    label->setEditable(false);
    label->setAlignment(kx::NSTextAlignment::Left);
    label->setFont(kx::NSFont::fontWithName(kFamily, kFontSize));
    label->setTextColor(kx::NSColor::colorWithWhite(kTextLevel, 1));
    label->setStringValue(textOf(number));
    label->setWantsLayer(true);
    const auto [red, green, blue] = shadeOf(number);
    label->layer()->setBackgroundColor(kx::NSColor::colorWithRed(red, green, blue, 1));
    label->layer()->setCornerRadius(kRadius);
    return label;
}

/// A window with its labels.
class Tree {
  public:
    Tree() : window_(kx::make<kx::NSWindow>(kx::NSRect(0, 0, kWide, kHigh))) {
        for (std::size_t i = 0; i < kLabels; ++i) window_->contentView()->addSubview(makeLabel(i));
        window_->makeKeyAndOrderFront();
        drawAll();
    }
    ~Tree() { window_->close(); }
    Tree(const Tree&) = delete;
    Tree& operator=(const Tree&) = delete;

    void drawAll() {
        window_->contentView()->setNeedsDisplay();
        window_->displayIfNeeded();
    }
    void change(const std::string& text) {
        const auto& label = window_->contentView()->subviews()[kChanged];
        static_cast<kx::NSTextField&>(*label).setStringValue(text);
        window_->displayIfNeeded();
    }
    [[nodiscard]] const KeptSurface& surface() const {
        return static_cast<const KeptSurface&>(*window_->surface());
    }

  private:
    kx::ScopedPort<kx::WindowSystem> windows_{std::make_shared<KeptWindows>()};
    std::shared_ptr<kx::NSWindow> window_;
};

// The peer

class BareDrawing {
  public:
    BareDrawing() : pixels_(kWide * kHigh) {
        auto* bytes = reinterpret_cast<unsigned char*>(pixels_.data());
        cairo_surface_t* surface =
            cairo_image_surface_create_for_data(bytes, CAIRO_FORMAT_ARGB32, kWide, kHigh, kWide * 4);
        cairo_ = cairo_create(surface);
        cairo_surface_destroy(surface);
        makeContext();
        for (std::size_t i = 0; i < kLabels; ++i) layouts_.push_back(makeLayout(textOf(i)));
        drawAll();
    }
    ~BareDrawing() {
        for (PangoLayout* layout : layouts_) g_object_unref(layout);
        g_object_unref(context_);
        cairo_destroy(cairo_);
    }
    BareDrawing(const BareDrawing&) = delete;
    BareDrawing& operator=(const BareDrawing&) = delete;

    void drawAll() {
        drawBackground();
        for (std::size_t i = 0; i < kLabels; ++i) drawLabel(i);
        cairo_surface_flush(cairo_get_target(cairo_));
    }
    void change(const std::string& text) {
        pango_layout_set_text(layouts_[kChanged], text.data(), static_cast<int>(text.size()));
        const kx::NSRect frame = frameOf(kChanged);
        cairo_save(cairo_);
        cairo_rectangle(cairo_, frame.origin.x, frame.origin.y, frame.size.width, frame.size.height);
        cairo_clip(cairo_);
        drawBackground();
        drawLabel(kChanged);
        cairo_restore(cairo_);
        cairo_surface_flush(cairo_get_target(cairo_));
    }
    [[nodiscard]] const std::vector<std::uint32_t>& pixels() const { return pixels_; }

  private:
    void makeContext() {
        context_ = pango_cairo_create_context(cairo_);
        cairo_font_options_t* options = cairo_font_options_create();
        cairo_font_options_set_antialias(options, CAIRO_ANTIALIAS_GRAY);
        cairo_font_options_set_hint_style(options, CAIRO_HINT_STYLE_NONE);
        cairo_font_options_set_hint_metrics(options, CAIRO_HINT_METRICS_OFF);
        pango_cairo_context_set_font_options(context_, options);
        cairo_font_options_destroy(options);
        pango_context_set_round_glyph_positions(context_, FALSE);
    }
    [[nodiscard]] PangoLayout* makeLayout(const std::string& text) const {
        PangoLayout* layout = pango_layout_new(context_);
        PangoFontDescription* font = pango_font_description_new();
        pango_font_description_set_family(font, kFamily);
        pango_font_description_set_absolute_size(font, kFontSize * PANGO_SCALE);
        pango_layout_set_font_description(layout, font);
        pango_font_description_free(font);
        pango_layout_set_width(layout, 72 * PANGO_SCALE);
        pango_layout_set_ellipsize(layout, PANGO_ELLIPSIZE_END);
        pango_layout_set_text(layout, text.data(), static_cast<int>(text.size()));
        return layout;
    }

    void drawBackground() const {
        const kx::ColorComponents color = kx::NSColor::windowBackgroundColor()->components();
        cairo_set_source_rgb(cairo_, color.red, color.green, color.blue);
        cairo_paint(cairo_);
    }
    void addRoundedRect(const kx::NSRect& rect) const {
        constexpr double quarter = std::numbers::pi / 2;
        const double left = rect.origin.x + kRadius, right = rect.maxX() - kRadius;
        const double top = rect.origin.y + kRadius, bottom = rect.maxY() - kRadius;
        cairo_new_sub_path(cairo_);
        cairo_arc(cairo_, right, top, kRadius, -quarter, 0);
        cairo_arc(cairo_, right, bottom, kRadius, 0, quarter);
        cairo_arc(cairo_, left, bottom, kRadius, quarter, 2 * quarter);
        cairo_arc(cairo_, left, top, kRadius, 2 * quarter, 3 * quarter);
        cairo_close_path(cairo_);
    }
    void drawLabel(std::size_t number) const {
        const kx::NSRect frame = frameOf(number);
        const auto [red, green, blue] = shadeOf(number);
        cairo_set_source_rgb(cairo_, red, green, blue);
        addRoundedRect(frame);
        cairo_fill(cairo_);
        PangoLayout* layout = layouts_[number];
        PangoRectangle extents;
        pango_layout_get_extents(layout, nullptr, &extents);
        const double height = extents.height / double{PANGO_SCALE};
        const double above = pango_layout_get_baseline(layout) / double{PANGO_SCALE};
        const double baseline = std::round(frame.origin.y + (frame.size.height - height) / 2 + above);
        cairo_set_source_rgb(cairo_, kTextLevel, kTextLevel, kTextLevel);
        cairo_move_to(cairo_, frame.origin.x, baseline);
        pango_cairo_show_layout_line(cairo_, pango_layout_get_line_readonly(layout, 0));
    }

    std::vector<std::uint32_t> pixels_;
    cairo_t* cairo_ = nullptr;
    PangoContext* context_ = nullptr;
    std::vector<PangoLayout*> layouts_;
};

[[maybe_unused]] const bool equalAnswers = [] {
    Tree tree;
    BareDrawing bare;
    const auto areEqual = [&] { return std::ranges::equal(tree.surface().pixels(), bare.pixels()); };
    peers::checkEqualAnswers(areEqual(), "view/tree-100");
    const auto before = bare.pixels();
    tree.change("Dry dock");
    bare.change("Dry dock");
    return peers::checkEqualAnswers(areEqual() && bare.pixels() != before, "view/one-label-changed");
}();

template <class Drawing>
void drawAll(benchmark::State& state) {
    Drawing drawing;
    for (auto _ : state) {
        drawing.drawAll();
        benchmark::ClobberMemory();
    }
}
BENCHMARK_TEMPLATE(drawAll, Tree)->Name("view/tree-100/kx")->Unit(benchmark::kMicrosecond);
BENCHMARK_TEMPLATE(drawAll, BareDrawing)->Name("view/tree-100/cairo")->Unit(benchmark::kMicrosecond);

template <class Drawing>
void changeOneLabel(benchmark::State& state) {
    Drawing drawing;
    const auto texts = newTexts();
    std::size_t turn = 0;
    for (auto _ : state) {
        drawing.change(texts[turn++ % texts.size()]);
        benchmark::ClobberMemory();
    }
}
BENCHMARK_TEMPLATE(changeOneLabel, Tree)->Name("view/one-label-changed/kx");
BENCHMARK_TEMPLATE(changeOneLabel, BareDrawing)->Name("view/one-label-changed/cairo");

}  // namespace
