// SPDX-License-Identifier: MIT

#include <cmath>
#include <limits>
#include <numbers>
#include <thread>

#include <gmock/gmock.h>

#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Graphics/TextLayout.h>
#include <KXFoundation/Testing/CapturedLog.h>
#include <KXFoundation/Testing/PictureComparison.h>

namespace kx {
namespace {

constexpr double kNaN = std::numeric_limits<double>::quiet_NaN();
constexpr double kInfinity = std::numeric_limits<double>::infinity();

struct Canvas {
    explicit Canvas(std::uint32_t wide = 100, std::uint32_t high = 100, double scale = 1)
        : bitmap(NSBitmapImageRep::bitmapWithPixels(wide, high)),
          context(GraphicsContext::onBitmap(bitmap, scale)) {}
    GraphicsContext* operator->() const { return context.get(); }
    std::uint32_t at(std::uint32_t x, std::uint32_t y) const { return bitmap->pixelAt(x, y); }
    std::uint32_t alpha(std::uint32_t x, std::uint32_t y) const { return at(x, y) >> 24; }
    bool isBlank() const {
        return std::ranges::all_of(bitmap->pixels(), [](std::uint32_t pixel) { return pixel == 0; });
    }

    std::shared_ptr<NSBitmapImageRep> bitmap;
    std::shared_ptr<GraphicsContext> context;
};

const NSColor& red() {
    static const auto color = NSColor::colorWithRed(1, 0, 0, 1);
    return *color;
}
const NSColor& black() {
    return *NSColor::blackColor();
}

/// The pixels that differ from "inside is `color`, outside is blank".
std::size_t misses(const Canvas& canvas, std::uint32_t left, std::uint32_t top, std::uint32_t right,
                   std::uint32_t bottom, std::uint32_t color) {
    std::size_t count = 0;
    for (std::uint32_t i = 0; i < canvas.bitmap->pixels().size(); ++i) {
        const std::uint32_t x = i % canvas.bitmap->pixelsWide(), y = i / canvas.bitmap->pixelsWide();
        const bool inside = x >= left && x < right && y >= top && y < bottom;
        count += canvas.bitmap->pixels()[i] != (inside ? color : 0);
    }
    return count;
}

TEST(GraphicsContext, FilledRectangleCoversItsPixelsExactly) {
    const std::tuple<double, NSRect, std::uint32_t, std::uint32_t, std::uint32_t, std::uint32_t> rows[] = {
        {1, {10, 20, 30, 40}, 10, 20, 40, 60},
        {2, {10, 20, 30, 20}, 20, 40, 80, 80},
        {1.25, {8, 16, 40, 24}, 10, 20, 60, 50},
        {1, {-50, -50, 60, 60}, 0, 0, 10, 10},
        {1, {-1e12, 50, 2e12, 1e300}, 0, 50, 100, 100},
        {1, {50, 50, 0, 10}, 0, 0, 0, 0},
        {1, {50, 50, -10, -10}, 0, 0, 0, 0},
    };
    for (const auto& [scale, rect, left, top, right, bottom] : rows) {
        const Canvas canvas(100, 100, scale);
        canvas->fill(rect, red());
        EXPECT_EQ(misses(canvas, left, top, right, bottom, 0xFFFF0000), 0u)
            << "scale " << scale << ", rectangle at " << rect.origin.x << ", " << rect.origin.y;
    }
}

TEST(GraphicsContext, PixelsArePremultiplied) {
    const Canvas canvas;
    canvas->fill({0, 0, 10, 10}, *NSColor::colorWithRed(1, 0.5, 0, 0.5));
    EXPECT_EQ(canvas.at(5, 5), 0x80804000u);
    canvas->fill({0, 0, 10, 10}, *NSColor::colorWithRed(0, 0, 1, 0.5));
    EXPECT_LE(testing::distance(canvas.at(5, 5), 0xC0402080), 1);
    canvas->clear({0, 0, 10, 10});
    EXPECT_TRUE(canvas.isBlank());
}

TEST(GraphicsContext, StateIsSavedAndRestored) {
    const Canvas canvas;
    {
        const GraphicsContext::SavedState state(*canvas.context);
        canvas->translate(10, 10);
        canvas->clip({0, 0, 20, 20});
        canvas->clip({10, 0, 20, 20});
        EXPECT_EQ(canvas->clipBounds(), (NSRect{10, 0, 10, 20}));
        canvas->fill({-50, -50, 200, 200}, red());
    }
    EXPECT_EQ(misses(canvas, 20, 10, 30, 30, 0xFFFF0000), 0u);
    EXPECT_EQ(canvas->clipBounds(), (NSRect{0, 0, 100, 100}));
}

TEST(GraphicsContext, RoundedShapesLeaveTheirCornersFree) {
    const Canvas filled, clipped, stroked;
    filled->fill({10, 10, 80, 80}, 20, black());
    clipped->clip({10, 10, 80, 80}, 20);
    clipped->fill({0, 0, 100, 100}, black());
    EXPECT_TRUE(testing::compare(*filled.bitmap, *clipped.bitmap, {.channel = 2}).accepted);
    stroked->stroke({10, 10, 80, 80}, 20, 2, black());  // wholly inside the edges
    const std::tuple<const Canvas&, std::uint32_t, std::uint32_t, std::uint32_t> rows[] = {
        {filled, 11, 11, 0},    {filled, 88, 11, 0},  {filled, 18, 18, 255},
        {filled, 50, 10, 255},  {stroked, 50, 9, 0},  {stroked, 50, 10, 255},
        {stroked, 50, 11, 255}, {stroked, 50, 12, 0}, {stroked, 50, 50, 0}};
    for (const auto& [canvas, x, y, alpha] : rows) EXPECT_EQ(canvas.alpha(x, y), alpha) << x << ", " << y;
}

TEST(GraphicsContext, PixelAlignedMovesEdgesToPixelEdges) {
    const Canvas canvas(100, 100, 1.25);
    const NSRect aligned = canvas->pixelAligned({1, 1, 10, 10});  // 1.25 to 13.75 pixels
    EXPECT_DOUBLE_EQ(aligned.origin.x * 1.25, 1);
    EXPECT_DOUBLE_EQ(aligned.maxX() * 1.25, 14);
}

TEST(GraphicsContext, ShadowOfAStraightEdgeIsTheGaussianIntegral) {
    const struct { double sigma, scale; } rows[] = {{2, 1}, {8, 1}, {8, 2}, {20, 1}};
    for (const auto& row : rows) {
        const Canvas canvas(400, 400, row.scale);
        const double edge = 200 / row.scale;
        canvas->drawShadow({edge, -1000, 3000, 3000}, 0, {NSColor::blackColor(), row.sigma, {}});
        for (std::uint32_t x = 0; x < 400; ++x) {
            const double away = (x + 0.5 - 200) / (row.sigma * row.scale);
            const double ideal = 255 * 0.5 * std::erfc(-away / std::numbers::sqrt2);
            EXPECT_NEAR(canvas.alpha(x, 200), ideal, 5) << "sigma " << row.sigma << ", pixel " << x;
        }
    }
}

TEST(GraphicsContext, ShadowOfALargeShapeHasTheCornersOfASmallOne) {
    const Shadow shadow{NSColor::blackColor(), 5, {3, 4}};
    const Canvas large(900, 700), small(900, 700);
    large->drawShadow({40.5, 40, 800, 600}, 10, shadow);
    small->drawShadow({40.5, 40, 120, 100}, 10, shadow);
    for (std::uint32_t y = 0; y < 90; ++y)
        for (std::uint32_t x = 0; x < 100; ++x) ASSERT_EQ(large.at(x, y), small.at(x, y)) << x << ", " << y;
    const Canvas part(900, 700);
    part->clip({20, 20, 60, 500});
    part->drawShadow({40.5, 40, 800, 600}, 10, shadow);
    for (std::uint32_t y = 0; y < 700; ++y) {
        for (std::uint32_t x = 0; x < 900; ++x) {
            const bool inside = x >= 20 && x < 80 && y >= 20 && y < 520;
            ASSERT_EQ(part.at(x, y), inside ? large.at(x, y) : 0) << x << ", " << y;
        }
    }
}

TEST(GraphicsContext, TurnedShadowHasTheSameShape) {
    const Canvas straight, turned;
    const Shadow shadow{NSColor::colorWithWhite(0, 0.5), 4, {}};
    straight->drawShadow({30, 30, 40, 40}, 6, shadow);
    turned->translate(50, 50);
    turned->rotate(std::numbers::pi / 2);
    turned->drawShadow({-20, -20, 40, 40}, 6, shadow);
    EXPECT_TRUE(testing::compare(*straight.bitmap, *turned.bitmap, {.channel = 2}).accepted);
    EXPECT_NEAR(straight.alpha(50, 50), 128, 1);
    EXPECT_EQ(straight.alpha(10, 50), 0u);
}

TEST(GraphicsContext, BitmapIsDrawnPixelForPixelWhereSizesAgree) {
    const auto source = NSBitmapImageRep::bitmapWithPixels(20, 20);
    for (std::uint32_t i = 0; i < 400; ++i)
        source->pixels()[i] = i % 3 ? 0xFF000000 | i * 40'000 : 0x80402010;
    const Canvas canvas(20, 20, 2);
    canvas->drawBitmap(*source, {0, 0, 10, 10});
    EXPECT_TRUE(std::ranges::equal(source->pixels(), canvas.bitmap->pixels()));
}

TEST(GraphicsContext, BitmapIsScaledWithoutFringe) {
    const auto checks = NSBitmapImageRep::bitmapWithPixels(128, 128);
    for (std::uint32_t i = 0; i < 128 * 128; ++i)
        checks->pixels()[i] = (i + i / 128) % 2 ? 0xFFFFFFFF : 0xFF000000;
    const Canvas canvas;
    canvas->drawBitmap(*checks, {10, 10, 16, 16});
    for (std::uint32_t x = 10; x < 26; ++x) {
        EXPECT_EQ(canvas.alpha(x, 10), 255u) << x;
        EXPECT_NEAR(canvas.at(x, 15) & 255, 128, 24) << x;
    }
    EXPECT_EQ(canvas.alpha(9, 15), 0u);
    EXPECT_EQ(canvas.alpha(26, 15), 0u);
    canvas->clear({0, 0, 100, 100});
    canvas->drawBitmap(*checks, {10, 10, 16, 16}, 0.5);
    EXPECT_NEAR(canvas.alpha(15, 15), 128, 1);
}

TEST(GraphicsContext, LayerIsPutDownAsOne) {
    const Canvas canvas;
    canvas->beginLayer();
    canvas->fill({0, 0, 60, 60}, red());
    canvas->fill({40, 40, 60, 60}, red());
    canvas->endLayer(0.5);
    EXPECT_EQ(canvas.at(50, 50), canvas.at(10, 10));  // the overlap is no darker
    EXPECT_NEAR(canvas.alpha(10, 10), 128, 1);
}

TEST(GraphicsContext, NumbersThatCannotBeDrawnDrawNothingAndHarmNothing) {
    const TextLayout text("x", NSFont::systemFontOfSize(14));
    for (const double bad : {kNaN, kInfinity, -kInfinity}) {
        const Canvas canvas;
        canvas->fill({bad, 0, 10, 10}, red());
        canvas->fill({0, 0, bad, 10}, 5, red());
        canvas->stroke({0, bad, 10, 10}, 5, 1, red());
        canvas->strokeLine({0, 0}, {bad, 10}, 1, red());
        canvas->strokeLine({0, 0}, {10, 10}, bad, red());
        canvas->drawShadow({0, 0, 10, bad}, 0, {NSColor::blackColor(), 1, {}});
        canvas->drawShadow({200, 200, 10, 10}, 0, {NSColor::blackColor(), 1, {bad, 0}});
        canvas->drawBitmap(*canvas.bitmap, {0, bad, 10, 10});
        canvas->drawText(text, {bad, 0}, red());
        canvas->translate(bad, 0);
        canvas->scaleBy(1, bad);
        canvas->rotate(bad);
        EXPECT_TRUE(canvas.isBlank()) << bad;
        canvas->fill({0, 0, 100, 100}, red());
        EXPECT_EQ(canvas.at(99, 99), 0xFFFF0000u) << bad;
    }
    const Canvas canvas;
    canvas->drawShadow({-1e9, -1e9, 2e9, 2e9}, kNaN, {NSColor::blackColor(), 1e9, {}});
    canvas->drawShadow({0, 0, 10, 10}, 1e9, {NSColor::blackColor(), kNaN, {}});
    canvas->strokeLine({-1e300, 50}, {1e300, 50}, 1e300, red());
    {
        const GraphicsContext::SavedState state(*canvas.context);
        canvas->scaleBy(0, 1);
        canvas->fill({0, 0, 100, 100}, red());
    }
    canvas->fill({0, 0, 10, 10}, red());
    EXPECT_EQ(canvas.at(5, 5), 0xFFFF0000u);
}

TEST(GraphicsContext, RestoringWhatWasNotSavedIsACallersError) {
    const testing::LenientMode lenient;
    const testing::CapturedLog log;
    const Canvas canvas;
    canvas->restoreState();
    canvas->endLayer(1);
    canvas->saveState();
    canvas->endLayer(1);
    EXPECT_THAT(log.lines(), ::testing::SizeIs(3));
    canvas->fill({0, 0, 10, 10}, red());
    EXPECT_EQ(canvas.at(5, 5), 0xFFFF0000u);
}

TEST(GraphicsContext, CurrentContextBelongsToTheThreadAndNests) {
    const Canvas outer, inner;
    EXPECT_EQ(GraphicsContext::current(), nullptr);
    {
        const GraphicsContext::Current outerScope(*outer.context);
        {
            const GraphicsContext::Current innerScope(*inner.context);
            EXPECT_EQ(GraphicsContext::current(), inner.context.get());
        }
        EXPECT_EQ(GraphicsContext::current(), outer.context.get());
        std::thread([] { EXPECT_EQ(GraphicsContext::current(), nullptr); }).join();
    }
    EXPECT_EQ(GraphicsContext::current(), nullptr);
}

TEST(GraphicsContext, NeedsABitmapAndAScale) {
    const auto bitmap = NSBitmapImageRep::bitmapWithPixels(1, 1);
    EXPECT_EQ(GraphicsContext::onBitmap(nullptr), nullptr);
    for (const double scale : {0.0, -1.0, kNaN, kInfinity})
        EXPECT_EQ(GraphicsContext::onBitmap(bitmap, scale), nullptr);
}

TEST(GraphicsContext, ClipsToMasksUntilTheStateEnds) {
    const Canvas canvas(8, 8, 2), left(2, 1), half(1, 1);
    left.bitmap->pixels()[0] = 0xFF000000;
    half.bitmap->pixels()[0] = 0x80000000;
    {
        const GraphicsContext::SavedState state(*canvas.context);
        canvas->clipToMask({0, 0, 4, 4}, nullptr);
        canvas->translate(1, 1);
        canvas->clipToMask({0, 0, 2, 2}, left.bitmap);
        canvas->clipToMask({-1, -1, 4, 4}, half.bitmap);
        canvas->fill({-1, -1, 4, 4}, red());
    }
    for (const std::uint32_t y : {2U, 5U}) EXPECT_EQ(canvas.at(2, y), 0x80800000) << y;
    EXPECT_EQ(canvas.at(5, 2) | canvas.at(1, 2) | canvas.at(2, 6), 0U);
    canvas->fill({3, 3, 1, 1}, red());  // no mask any more
    EXPECT_EQ(canvas.at(7, 7), 0xFFFF0000);

    canvas->beginLayer();
    canvas->clipToMask({0, 0, 0, 4}, half.bitmap);
    canvas->fill({0, 0, 4, 4}, black());
    canvas->endLayer(1);
    EXPECT_EQ(canvas.at(0, 0), 0U);
}

}  // namespace
}  // namespace kx
