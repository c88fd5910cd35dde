// SPDX-License-Identifier: MIT

#include <thread>

#include <gtest/gtest.h>

#include <KXFoundation/Media/NSView_Snapshot.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

namespace kx {
namespace {

/// Green. Counts who is drawing it, and throws if told to.
struct Drawing : Subclass<Drawing, NSView> {
    void drawRect(GraphicsContext& context, NSRect dirty) override {
        isCurrent = GraphicsContext::current() == &context;
        ++inside;  // plain: the view's monitor is all that keeps two threads apart
        mostInside = std::max(mostInside, inside);
        std::this_thread::yield();
        --inside;
        if (throws) throw 1;
        context.fill(dirty, *NSColor::colorWithRed(0, 1, 0, 1));
    }
    bool throws = false, isCurrent = false;
    int inside = 0, mostInside = 0;
};

TEST(NSView_Snapshot, ShowsTheViewAloneAtAPixelToThePoint) {
    const auto view = make<Drawing>(NSRect(5, 5, 100.7, 50.2));
    const auto subview = make<Drawing>(NSRect(0, 0, 10, 10));
    subview->throws = true;  // never drawn
    view->addSubview(subview);
    const auto image = NSView_Snapshot::snapshot(view);
    EXPECT_TRUE(view->isCurrent);
    EXPECT_EQ(GraphicsContext::current(), nullptr);
    EXPECT_EQ(image->size(), (NSSize{100.7, 50.2}));
    const auto shown = image->bitmapAtScale(1);
    EXPECT_EQ(shown->pixelsWide(), 101U);
    EXPECT_EQ(shown->pixelAt(99, 49), 0xFF00FF00);
    EXPECT_EQ(shown->pixelAt(100, 49), 0U);  // the bitmap has 100 x 50 pixels
    EXPECT_EQ(shown->pixelAt(99, 50), 0U);

    EXPECT_EQ(NSView_Snapshot::snapshot(nullptr), nullptr);
    EXPECT_EQ(NSView_Snapshot::snapshot(make<Drawing>(NSRect(0, 0, 0.9, 10))), nullptr);
    EXPECT_EQ(NSView_Snapshot::snapshot(make<Drawing>(NSRect(0, 0, 40'000, 10))), nullptr);
}

TEST(NSView_Snapshot, HasTheLookOfTheWindow) {
    struct Text : Subclass<Text, NSView> {
        void drawRect(GraphicsContext& context, NSRect dirty) override {
            context.fill(dirty, *NSColor::textColor());
        }
    };
    const auto view = make<Text>(NSRect(0, 0, 1, 1));
    const auto pixel = [&] { return NSView_Snapshot::snapshot(view)->bitmapAtScale(1)->pixelAt(0, 0); };
    const std::uint32_t light = pixel();
    const auto window = make<NSWindow>(NSRect(0, 0, 10, 10));
    window->setAppearance(NSAppearance::Dark);
    window->setContentView(view);
    EXPECT_GT(pixel(), light);
}

TEST(NSView_Snapshot, OneThreadAtATimeDrawsAViewAlsoAfterAThrow) {
    const auto view = make<Drawing>(NSRect(0, 0, 8, 8));
    view->throws = true;
    EXPECT_ANY_THROW((void)NSView_Snapshot::snapshot(view));
    EXPECT_EQ(GraphicsContext::current(), nullptr);
    view->throws = false;
    const auto manySnapshots = [&] {
        for (int i = 0; i < 100; ++i) (void)NSView_Snapshot::snapshot(view);
    };
    std::thread other(manySnapshots);
    manySnapshots();
    other.join();
    EXPECT_EQ(view->mostInside, 1);
}

}  // namespace
}  // namespace kx
