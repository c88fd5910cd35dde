// SPDX-License-Identifier: MIT

#include "ChartView.h"

#include <algorithm>

#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/TextLayout.h>

namespace plot {

using namespace kx;

namespace {

constexpr double kWidth = 930;
constexpr double kMargin = 24;
constexpr double kHeadHeight = 70;
constexpr double kNameWidth = 110;
constexpr double kBarsLeft = kMargin + kNameWidth + 10;
constexpr double kBarsWidth = 385;
constexpr double kTitleHeight = 22;
constexpr double kRowHeight = 20;
constexpr double kBarHeight = 12;
constexpr double kGroupGap = 12;

double heightOf(const Group& group) {
    return kTitleHeight + kRowHeight * static_cast<double>(group.bars.size()) + kGroupGap;
}

std::shared_ptr<NSColor> markColor() {
    return NSColor::colorWithRed(0.85, 0.35, 0.05, 1);
}

void drawLine(GraphicsContext& context, std::string_view text, double size, bool bold, NSRect into,
              const NSColor& color, NSTextAlignment alignment = NSTextAlignment::Left) {
    const auto font = bold ? NSFont::boldSystemFontOfSize(size) : NSFont::systemFontOfSize(size);
    const TextLayout line(
        text, font,
        {.width = into.size.width, .alignment = alignment, .lineBreak = LineBreakMode::TruncateTail});
    context.drawTextLine(line, into, color);
}

double longest(const Group& group) {
    double most = 0;
    for (const Bar& bar : group.bars) most = std::max(most, bar.length);
    for (const double mark : group.marks) most = std::max(most, mark);
    return most;
}

}  // namespace

bool ChartView::init(Chart chart) {
    chart_ = std::move(chart);
    double height = kHeadHeight;
    for (const Group& group : chart_.groups) height += heightOf(group);
    return Super::init({0, 0, kWidth, height});
}

void ChartView::drawRect(GraphicsContext& context, NSRect) {
    context.fill(bounds(), *NSColor::whiteColor());
    const double width = kWidth - 2 * kMargin;
    drawLine(context, chart_.title, 20, true, {kMargin, 14, width, 28}, *NSColor::textColor());
    const NSRect legend{kMargin, 42, width, 18};
    drawLine(context, "Time of one operation; shorter is better. Each workload has a scale of its own.", 12,
             false, legend, *NSColor::secondaryLabelColor());
    const double markLeft = kMargin + 560;
    context.fill({markLeft, 44, 2, 14}, *markColor());
    drawLine(context, "the most that ours may take", 12, false, {markLeft + 8, 42, 260, 18},
             *NSColor::secondaryLabelColor());
    double top = kHeadHeight;
    for (const Group& group : chart_.groups) {
        drawGroup(context, group, top);
        top += heightOf(group);
    }
}

void ChartView::drawGroup(GraphicsContext& context, const Group& group, double top) const {
    drawLine(context, group.title, 13, true, {kMargin, top, kWidth - 2 * kMargin, kTitleHeight},
             *NSColor::textColor());
    const double most = longest(group);
    const auto wide = [&](double length) { return most > 0 ? kBarsWidth * length / most : 0; };
    double y = top + kTitleHeight;
    for (const Bar& bar : group.bars) {
        const bool isOurs = bar.who == "kx";
        const double bottomGap = (kRowHeight - kBarHeight) / 2;
        const NSRect shape{kBarsLeft, y + bottomGap, std::max(1.0, wide(bar.length)), kBarHeight};
        const auto color = isOurs ? NSColor::controlAccentColor() : NSColor::colorWithWhite(0.72, 1);
        context.fill(context.pixelAligned(shape), 2, *color);
        double end = shape.maxX();
        for (const double mark : isOurs ? group.marks : std::vector<double>()) {
            context.fill({kBarsLeft + wide(mark) - 1, y + 1, 2, kRowHeight - 2}, *markColor());
            end = std::max(end, kBarsLeft + wide(mark));
        }
        drawLine(context, bar.who, 12, isOurs, {kMargin, y, kNameWidth, kRowHeight}, *NSColor::textColor(),
                 NSTextAlignment::Right);
        drawLine(context, bar.text + (bar.missed ? " (missed)" : ""), 12, isOurs || bar.missed,
                 {end + 8, y, kWidth - end - 16, kRowHeight},
                 bar.missed ? *markColor() : *NSColor::textColor());
        y += kRowHeight;
    }
}

}  // namespace plot
