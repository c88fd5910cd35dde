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

}  // namespace

TEST(CGMutablePath, HasABoxAroundItsPointsAndOneAroundItsCurves) {
    const double turn = std::sqrt(3.0) / 6;  // where the S turns: at 0.5 ± turn
    const double swing = 3 * (0.5 - turn) * (0.5 + turn) * 2 * turn;
    const struct {
        const char* what;
        void (*draw)(CGMutablePath&);
        NSRect points, curves;
    } rows[] = {
        {"nothing", [](CGMutablePath&) {}, {}, {}},
        {"a point",
         [](CGMutablePath& p) {
             p.moveToPoint({3, 4});
         },
         {3, 4, 0, 0},
         {3, 4, 0, 0}},
        {"a rectangle",
         [](CGMutablePath& p) {
             p.addRect({5, 6, -2, 3});
         },
         {3, 6, 2, 3},
         {3, 6, 2, 3}},
        {"an arch",
         [](CGMutablePath& p) {
             p.moveToPoint({0, 0});
             p.addQuadCurveToPoint({5, -10}, {10, 0});
         },
         {0, -10, 10, 10},
         {0, -5, 10, 5}},
        {"an S",
         [](CGMutablePath& p) {
             p.moveToPoint({0, 0});
             p.addCurveToPoint({1, 1}, {2, -1}, {3, 0});
         },
         {0, -1, 3, 2},
         {0, -swing, 3, 2 * swing}},
        {"an arch from where a line was closed",
         [](CGMutablePath& p) {
             p.moveToPoint({0, 0});
             p.addLineToPoint({0, 40});
             p.closeSubpath();
             p.addQuadCurveToPoint({5, -10}, {10, 0});
         },
         {0, -10, 10, 50},
         {0, -5, 10, 45}},
        {"a curve that is a line",
         [](CGMutablePath& p) {
             p.moveToPoint({0, 0});
             p.addCurveToPoint({1, 1}, {2, 2}, {3, 3});
             p.addQuadCurveToPoint({2, 2}, {1, 1});
         },
         {0, 0, 3, 3},
         {0, 0, 3, 3}},
    };
    for (const auto& row : rows) {
        const auto path = CGMutablePath::path();
        row.draw(*path);
        expectNear(path->boundingBox(), row.points, row.what);
        expectNear(path->pathBoundingBox(), row.curves, row.what);
        const auto moved = CGMutablePath::path();
        moved->addPath(*path, {100, 200});
        if (!path->isEmpty()) expectNear(moved->pathBoundingBox(), row.curves.movedBy({100, 200}), row.what);
        moved->translate({-100, -200});
        EXPECT_TRUE(moved->isEqual(*path)) << row.what;
    }
}

TEST(CGMutablePath, AppendsToItself) {
    const auto path = CGMutablePath::path();
    path->addRect({0, 0, 1, 1});
    path->addPath(*path, {5, 0});
    expectNear(path->boundingBox(), {0, 0, 6, 1}, "twice");
    EXPECT_EQ(path->elements().size(), 10u);
    EXPECT_EQ(path->currentPoint(), (NSPoint{5, 0}));
}

TEST(CGMutablePath, IsFilledWithHolesAndStroked) {
    const auto ring = CGMutablePath::path();
    ring->addRect({2, 2, 16, 16});
    ring->moveToPoint({6, 6});  // the other way round
    for (const NSPoint corner : {NSPoint{6, 14}, {14, 14}, {14, 6}}) ring->addLineToPoint(corner);
    ring->closeSubpath();
    const auto bitmap = NSBitmapImageRep::bitmapWithPixels(20, 20);
    const auto context = GraphicsContext::onBitmap(bitmap);
    ring->fill(*context, *NSColor::blackColor());
    EXPECT_EQ(bitmap->pixelAt(4, 10), 0xFF000000);
    EXPECT_EQ(bitmap->pixelAt(10, 10), 0u);
    EXPECT_EQ(bitmap->pixelAt(0, 0), 0u);
    const auto line = CGMutablePath::path();
    line->moveToPoint({0, 10});
    line->addLineToPoint({20, 10});
    line->stroke(*context, 2, *NSColor::whiteColor());
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

}  // namespace kx
