// SPDX-License-Identifier: MIT

#include <algorithm>

#include <poll.h>

#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/EventLoop.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSCollectionView.h>
#include <KXFoundation/Platform/Views/NSImageView.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Platform/Views/NSTextView.h>
#include <KXFoundation/Testing/PictureComparison.h>

#include "ViewFixture.h"

namespace kx {
namespace {

using ::testing::ElementsAre;

struct Swatch : Subclass<Swatch, NSView> {
    void drawRect(GraphicsContext& context, NSRect dirty) override {
        ++drawn;
        lastDirty = dirty;
        context.fill(bounds().insetBy(-5, -5), *NSColor::colorWithRed(1, 0, 0, 1));
    }
    int drawn = 0;
    NSRect lastDirty;
};

template <class View>
View& add(NSView& content, NSRect frame) {
    const auto view = make<View>(frame);
    content.addSubview(view);
    return *view;
}

void addControls(NSView& content) {
    content.setUserInterfaceLayoutDirection(NSUserInterfaceLayoutDirection::RightToLeft);
    add<NSTextField>(content, {20, 20, 300, 28}).setPlaceholderString("اسم الميناء");
    add<NSTextField>(content, {20, 58, 300, 28}).setStringValue("Lisbon, the old port");
    add<NSTextView>(content, {20, 160, 300, 60})
        .setString(
            "A harbour gives ships a place to stay. تحميه أسواره من الأمواج، ويعرف أهله كل قارب باسمه.");
    const auto red = NSImage::imageWithSize({18, 12}, [](NSRect rect) {
        GraphicsContext::current()->fill(rect.insetBy(1, 1), *NSColor::colorWithRed(0.85, 0.2, 0.25, 1));
        return true;
    });
    add<NSImageView>(content, {340, 212, 160, 60}).setImage(red);
    std::vector<NSButton*> buttons;
    for (const double y : {20, 58, 96, 134}) {
        buttons.push_back(&add<NSButton>(content, {340, y, 160, 28}));
        buttons.back()->setTitle("إنشاء ميناء");
    }
    buttons[0]->setDefaultButton(true);
    buttons[1]->setHighlighted(true);
    buttons[2]->setEnabled(false);
    buttons[3]->setImage(red);
    auto& collection = add<NSCollectionView>(content, {20, 232, 300, 66});
    const auto layout = make<testing::FlippingLayout>();
    layout->setItemSize({70, 28});
    collection.setCollectionViewLayout(layout);
    for (int i = 0; i < 5; ++i) add<NSButton>(collection, {}).setTitle("Lisbon");
}

struct Restless : Subclass<Restless, NSView> {
    void drawRect(GraphicsContext&, NSRect) override {
        if (++drawn < 3) setNeedsDisplay();
    }
    int drawn = 0;
};

TEST(WindowDrawing, WhatAsksForItIsHeardInALoopOfOnesOwn) {
    const testing::OffscreenWindow shown({100, 100});
    const auto view = make<Restless>(NSRect(0, 0, 50, 50));
    shown.content().addSubview(view);
    const auto drawnWhenStill = [&] {
        pollfd loop{EventLoop::main().descriptor(), POLLIN, 0};
        while (::poll(&loop, 1, 0) > 0) EventLoop::main().drain();
        return view->drawn;
    };
    EXPECT_EQ(drawnWhenStill(), 3);

    shown.surface().send(SurfaceMiniaturized{true});
    view->setNeedsDisplay();
    EXPECT_EQ(drawnWhenStill(), 3);
    shown.surface().send(SurfaceMiniaturized{false});
    EXPECT_EQ(drawnWhenStill(), 4) << "the window came back";
}

TEST(WindowDrawing, OnlyWhatChangedIsDrawn) {
    const testing::OffscreenWindow shown({200, 100}, 2);
    const auto changing = make<Swatch>(NSRect(10, 10, 40, 20));
    const auto still = make<Swatch>(NSRect(100, 10, 40, 20));
    shown.content().addSubview(changing);
    shown.content().addSubview(still);
    shown.window->displayIfNeeded();
    const auto dirty = [&](NSRect rect) { return [&, rect] { changing->setNeedsDisplay(rect); }; };
    const auto move = [&](NSRect frame) { return [&, frame] { changing->setFrame(frame); }; };
    const std::tuple<std::string, std::function<void()>, std::vector<PixelRect>> rows[] = {
        {"nothing", [] {}, {}},
        {"a part", dirty({1, 2, 3, 4}), {{22, 24, 6, 8}}},
        {"beyond the bounds", dirty({30, 10, 100, 100}), {{80, 40, 20, 20}}},
        {"outside", dirty({50, 0, 10, 10}), {}},
        {"a fraction of a pixel", dirty({0.3, 0.3, 0.1, 0.1}), {{20, 20, 1, 1}}},
        {"a move", move({10, 60, 40, 20}), {{20, 20, 80, 40}, {20, 120, 80, 40}}},
        {"the same frame", move({10, 60, 40, 20}), {}},
        {"hiding", [&] { changing->setHidden(true); }, {{20, 120, 80, 40}}},
        {"what is hidden", move({10, 50, 40, 20}), {}},
        {"showing", [&] { changing->setHidden(false); }, {{20, 100, 80, 40}}},
        {"removing", [&] { changing->removeFromSuperview(); }, {{20, 100, 80, 40}}},
        {"what is removed", dirty({0, 0, 40, 20}), {}},
    };
    const int before = still->drawn;
    for (const auto& [what, change, want] : rows) {
        const auto presented = shown.surface().lastChanged();
        change();
        EXPECT_EQ(shown.window->invalidRegion().isEmpty(), want.empty()) << what;
        shown.window->displayIfNeeded();
        EXPECT_EQ(shown.surface().lastChanged(), want.empty() ? presented : want) << what;
    }
    EXPECT_EQ(still->drawn, before) << "a neighbour is left alone";
}

TEST(WindowDrawing, AViewDrawsInsideItsBoundsAndIsToldWhatIsDirty) {
    const testing::OffscreenWindow shown({60, 60});
    const auto swatch = make<Swatch>(NSRect(10, 10, 20, 20));
    shown.content().addSubview(swatch);
    EXPECT_EQ(shown.pixel(10, 10), testing::kRed);
    EXPECT_EQ(shown.pixel(29, 29), testing::kRed);
    EXPECT_NE(shown.pixel(9, 10), testing::kRed);
    EXPECT_NE(shown.pixel(30, 29), testing::kRed);
    shown.window->setNeedsDisplay({0, 0, 12, 15});
    shown.window->displayIfNeeded();
    EXPECT_EQ(swatch->lastDirty, NSRect(0, 0, 2, 5));
}

TEST(WindowDrawing, ClippingCutsSubviews) {
    const testing::OffscreenWindow shown({60, 60});
    const auto frame = make<NSView>(NSRect(10, 10, 20, 20));
    frame->addSubview(make<Swatch>(NSRect(10, 10, 30, 30)));
    shown.content().addSubview(frame);
    const auto outside = [&] { return shown.pixel(35, 35) == testing::kRed; };
    EXPECT_TRUE(outside());
    frame->setClipsToBounds(true);
    EXPECT_FALSE(outside());
    frame->setClipsToBounds(false);
    frame->setAlphaValue(0.5);
    EXPECT_FALSE(outside());
    EXPECT_EQ(shown.pixel(35, 35) >> 24, 255U) << "mixed with the window's background";
}

// A curve that the clip cuts is rasterised from another starting point: its edge may round another way by a
// level or two. A missing or doubled edge differs by far more.
TEST(WindowDrawing, DrawnInPiecesItLooksAsDrawnWhole) {
    for (const double scale : {1.0, 1.25, 2.0}) {
        const testing::OffscreenWindow shown({520, 310}, scale);
        addControls(shown.content());
        shown.content().subviews()[2]->setAlphaValue(0.6);
        shown.content().subviews()[5]->setFrame({340.3, 20.6, 160, 28});
        const auto whole = shown.picture();
        for (const NSRect piece :
             {NSRect(0, 0, 100.3, 33.3), NSRect(90, 30, 300, 120.7), NSRect(333, 17, 9, 200)})
            shown.window->setNeedsDisplay(piece);
        EXPECT_TRUE(testing::compare(*shown.picture(), *whole, {.channel = 4}).accepted) << "scale " << scale;
    }
}

TEST(WindowDrawing, ASurfaceThatChangesIsFollowed) {
    std::vector<std::uint32_t> seen[2];
    for (const auto pixels : {OffscreenPixels::Copied, OffscreenPixels::Shared}) {
        const testing::OffscreenWindow shown({100, 50}, 1, pixels);
        const auto swatch = make<Swatch>(NSRect(10, 10, 40, 20));
        shown.content().addSubview(swatch);
        shown.window->displayIfNeeded();
        shown.surface().setFrame({0, 0, 120, 60});
        EXPECT_EQ(shown.content().frame(), NSRect(0, 0, 120, 60));
        shown.surface().setScale(2);
        shown.window->displayIfNeeded();
        EXPECT_EQ(shown.surface().bitmap()->pixelsWide(), 240U);
        EXPECT_EQ(shown.surface().bitmap()->pixelsHigh(), 120U);
        EXPECT_THAT(shown.surface().lastChanged(), ElementsAre(PixelRect{0, 0, 240, 120}));
        swatch->setFrame({50, 10, 40, 20});
        seen[pixels == OffscreenPixels::Shared] = shown.pixels();
    }
    EXPECT_TRUE(seen[0] == seen[1]);
}

TEST(InvalidRegion, StaysSmallAndCoversEverything) {
    InvalidRegion region;
    std::vector<NSRect> added;
    for (int i = 0; i < 500; ++i) {
        added.emplace_back((i * 37) % 400, (i * 91) % 300, 1 + i % 7, 1 + i % 5);
        region.add(added.back());
        ASSERT_LE(region.rects().size(), InvalidRegion::kMostRects);
    }
    for (const NSRect& rect : added)
        EXPECT_TRUE(std::ranges::any_of(region.rects(),
                                        [&](const NSRect& r) { return r.intersection(rect) == rect; }))
            << rect.origin.x << "," << rect.origin.y;
}

}  // namespace
}  // namespace kx
