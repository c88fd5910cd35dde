// SPDX-License-Identifier: MIT

#include <cmath>
#include <limits>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Graphics/CGMutablePath.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Testing/CapturedLog.h>

namespace kx {
namespace {

void expectNear(NSRect got, NSRect want, const char* what) {
    EXPECT_NEAR(got.origin.x, want.origin.x, 1e-9) << what;
    EXPECT_NEAR(got.origin.y, want.origin.y, 1e-9) << what;
    EXPECT_NEAR(got.maxX(), want.maxX(), 1e-9) << what;
    EXPECT_NEAR(got.maxY(), want.maxY(), 1e-9) << what;
}

/// Each part by its points: one for a line, two or three for a curve, none to close; the first is where it
/// begins.
std::shared_ptr<CGMutablePath> pathOf(const std::vector<std::vector<NSPoint>>& parts) {
    auto path = CGMutablePath::path();
    for (const auto& part : parts) {
        if (part.empty()) {
            path->closeSubpath();
        } else if (path->isEmpty()) {
            path->moveToPoint(part[0]);
        } else if (part.size() == 1) {
            path->addLineToPoint(part[0]);
        } else if (part.size() == 2) {
            path->addQuadCurveToPoint(part[0], part[1]);
        } else {
            path->addCurveToPoint(part[0], part[1], part[2]);
        }
    }
    return path;
}

TEST(CGMutablePath, HasABoxAroundItsPointsAndOneAroundItsCurves) {
    const double turn = std::sqrt(3.0) / 6;  // where the S turns: at 0.5 ± turn
    const double swing = 3 * (0.5 - turn) * (0.5 + turn) * 2 * turn;
    const std::tuple<const char*, std::vector<std::vector<NSPoint>>, NSRect, NSRect> rows[] = {
        {"nothing", {}, {}, {}},
        {"a point", {{{3, 4}}}, {3, 4, 0, 0}, {3, 4, 0, 0}},
        {"an arch", {{{0, 0}}, {{5, -10}, {10, 0}}}, {0, -10, 10, 10}, {0, -5, 10, 5}},
        {"an S", {{{0, 0}}, {{1, 1}, {2, -1}, {3, 0}}}, {0, -1, 3, 2}, {0, -swing, 3, 2 * swing}},
        {"an arch from where a line was closed",
         {{{0, 0}}, {{0, 40}}, {}, {{5, -10}, {10, 0}}},
         {0, -10, 10, 50},
         {0, -5, 10, 45}},
        {"a line of curves",
         {{{0, 0}}, {{1, 1}, {2, 2}, {3, 3}}, {{2, 2}, {1, 1}}},
         {0, 0, 3, 3},
         {0, 0, 3, 3}},
    };
    for (const auto& [what, parts, points, curves] : rows) {
        const auto path = pathOf(parts);
        expectNear(path->boundingBox(), points, what);
        expectNear(path->pathBoundingBox(), curves, what);
        const auto moved = CGMutablePath::path();
        moved->addPath(*path, {100, 200});
        if (!path->isEmpty()) expectNear(moved->pathBoundingBox(), curves.movedBy({100, 200}), what);
        moved->translate({-100, -200});
        EXPECT_TRUE(moved->isEqual(*path)) << what;
    }
}

TEST(CGMutablePath, AppendsToItself) {
    const auto path = CGMutablePath::path();
    path->addRect({1, 0, -1, 1});
    expectNear(path->boundingBox(), {0, 0, 1, 1}, "once");
    path->addPath(*path, {5, 0});
    expectNear(path->boundingBox(), {0, 0, 6, 1}, "twice");
    EXPECT_EQ(path->elements().size(), 10u);
    EXPECT_EQ(path->currentPoint(), (NSPoint{6, 0}));
}

TEST(CGMutablePath, IsFilledWithHolesAndStroked) {
    const auto ring = CGMutablePath::path();
    ring->addRect({2, 2, 16, 16});
    ring->addPath(*pathOf({{{6, 6}}, {{6, 14}}, {{14, 14}}, {{14, 6}}, {}}), {});  // the other way round
    const auto bitmap = NSBitmapImageRep::bitmapWithPixels(20, 20);
    const auto context = GraphicsContext::onBitmap(bitmap);
    ring->fill(*context, *NSColor::blackColor());
    EXPECT_EQ(bitmap->pixelAt(4, 10), 0xFF000000);
    EXPECT_EQ(bitmap->pixelAt(10, 10), 0u);
    EXPECT_EQ(bitmap->pixelAt(0, 0), 0u);
    pathOf({{{0, 10}}, {{20, 10}}})->stroke(*context, 2, *NSColor::whiteColor());
    EXPECT_EQ(bitmap->pixelAt(10, 10), 0xFFFFFFFF);
    EXPECT_EQ(bitmap->pixelAt(10, 7), 0u);
}

TEST(CGMutablePath, TakesNothingThatIsNoPath) {
    const testing::LenientMode lenient;
    const testing::CapturedLog log;
    const double no = std::numeric_limits<double>::quiet_NaN();
    const auto path = CGMutablePath::path();
    path->addLineToPoint({1, 1});
    path->moveToPoint({no, 1});
    path->closeSubpath();
    EXPECT_TRUE(path->isEmpty());
    path->moveToPoint({1, 1});
    path->addCurveToPoint({1, 1}, {no, 1}, {2, 2});
    path->translate({0, no});
    path->addPath(*path, {no, 0});
    EXPECT_EQ(path->points().size(), 1u);
    path->addLineToPoint({9, 9});
    path->moveToPoint({no, 1});
    path->addPath(*CGMutablePath::path(), {7, 7});
    path->closeSubpath();
    EXPECT_EQ(path->currentPoint(), (NSPoint{1, 1}));
}

}  // namespace
}  // namespace kx
