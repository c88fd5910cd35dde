// SPDX-License-Identifier: MIT

#include "pages/ColoursPage.h"

#include <cstdio>
#include <optional>
#include <string>

#include <KXFoundation/Media/NSColor_HEX.h>
#include <KXFoundation/Media/NSColor_RGBAComponents.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>

namespace gallery {

using namespace kx;

namespace {

struct Code {
    std::optional<std::string_view> text;
    double alpha = 1;
};

constexpr Code kCodes[] = {
    {"#FF8800"}, {"ff8800"},  {"0xFF8800"}, {"0x#FF8800"}, {"  #2463D4\n"}, {"#2463D4", 0.5},
    {"1G8040"},  {"#107C41"}, {"#FFF"},     {"FF88001"},   {"#0XFF8800"},   {std::nullopt},
};

/// A colour over a frame that shows where it is transparent.
class Swatch : public Subclass<Swatch, NSView> {
  public:
    bool init(NSRect frame, std::shared_ptr<NSColor> color) {
        color_ = std::move(color);
        return Super::init(frame);
    }
    void drawRect(GraphicsContext& context, NSRect) override {
        context.fill(bounds(), 4, *color_);
        context.stroke(bounds(), 4, 1, *NSColor::separatorColor());
    }

  private:
    std::shared_ptr<NSColor> color_;
};

/// The code with what would not be seen written out.
std::string shown(const Code& code) {
    if (!code.text) return text("general.none");
    std::string quoted = "“";
    for (const char c : *code.text) quoted += c == '\n' ? "\\n" : std::string(1, c);
    quoted += "”";
    if (code.alpha == 1) return quoted;
    char alpha[16];
    std::snprintf(alpha, sizeof alpha, ", %.1f", code.alpha);
    return quoted + alpha;
}

std::shared_ptr<NSView> cell(std::string_view words, double width) {
    auto field = label(words);
    field->setFrame({0, 0, width, field->frame().size.height});
    return field;
}

/// The four numbers in the direction in which their heading is read.
std::shared_ptr<NSView> components(const NSColor& color, NSSize size) {
    auto view = make<NSView>(NSRect({}, size));
    double values[4];
    NSColor_RGBAComponents::getRGBAComponents(&color, values);
    double x = 0;
    for (const double value : values) {
        char number[16];
        std::snprintf(number, sizeof number, "%.4f", value);
        const auto field = label(number);
        const NSSize own = field->frame().size;
        field->setFrame(directed({x, 0, own.width, size.height}, size.width));
        view->addSubview(field);
        x += own.width + 10;
    }
    return view;
}

std::shared_ptr<NSView> heading(std::string_view key, double width) {
    auto field = label(text(key), 12, true);
    field->setTextColor(NSColor::secondaryLabelColor());
    field->setFrame({0, 0, width, field->frame().size.height});
    return field;
}

}  // namespace

void ColoursPage::build(Column& column, Gallery&) {
    constexpr double kCodeWidth = 150, kSwatchWidth = 90, kNumbersWidth = 300, kHeight = 24;
    column.title(text("colours.title"));
    column.paragraph(text("colours.explanation"));
    column.space(12);
    column.tableRow({heading("colours.code", kCodeWidth), heading("colours.colour", kSwatchWidth),
                     heading("colours.components", kNumbersWidth)},
                    kHeight);
    for (const Code& code : kCodes) {
        const auto color = NSColor_HEX::colorWithHexString(code.text, code.alpha);
        column.tableRow(
            {cell(shown(code), kCodeWidth), make<Swatch>(NSRect(0, 0, kSwatchWidth, kHeight), color),
             components(*color, {kNumbersWidth, kHeight})},
            kHeight);
    }
}

}  // namespace gallery
