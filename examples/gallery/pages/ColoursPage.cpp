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

std::string componentsText(const NSColor& color) {
    double c[4];
    NSColor_RGBAComponents::getRGBAComponents(&color, c);
    char line[80];
    std::snprintf(line, sizeof line, "%.4f  %.4f  %.4f  %.4f", c[0], c[1], c[2], c[3]);
    return line;
}

std::shared_ptr<NSView> cell(std::string_view words, double width) {
    auto field = label(words);
    field->setFrame({0, 0, width, field->frame().size.height});
    return field;
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
    column.row({heading("colours.code", kCodeWidth), heading("colours.colour", kSwatchWidth),
                heading("colours.components", kNumbersWidth)},
               kHeight);
    for (const Code& code : kCodes) {
        const auto color = NSColor_HEX::colorWithHexString(code.text, code.alpha);
        column.row({cell(shown(code), kCodeWidth), make<Swatch>(NSRect(0, 0, kSwatchWidth, kHeight), color),
                    cell(componentsText(*color), kNumbersWidth)},
                   kHeight);
    }
}

}  // namespace gallery
