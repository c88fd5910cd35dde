// SPDX-License-Identifier: MIT

#include <cmath>

#include <KXFoundation/Platform/Views/NSCollectionView.h>

#include "ViewFixture.h"

namespace kx {
namespace {

using testing::FlippingLayout;

std::vector<NSRect> frames(NSCollectionViewFlowLayout& layout, std::size_t count, double width) {
    std::vector<NSRect> found;
    for (const auto& attributes : layout.layoutAttributes(count, width)) {
        EXPECT_EQ(attributes.item, found.size());
        found.push_back(attributes.frame);
    }
    return found;
}

TEST(NSCollectionViewFlowLayout, Frames) {
    const std::tuple<std::string, std::size_t, double, std::vector<NSRect>, double> rows[] = {
        {"nothing", 0, 200, {}, 7},
        {"two just fit", 2, 104, {{6, 3, 40, 20}, {56, 3, 40, 20}}, 27},
        {"gaps grow", 2, 114, {{6, 3, 40, 20}, {66, 3, 40, 20}}, 27},
        {"wraps, gaps are kept", 3, 124, {{6, 3, 40, 20}, {76, 3, 40, 20}, {6, 28, 40, 20}}, 52},
        {"one to a row", 3, 103, {{6, 3, 40, 20}, {6, 28, 40, 20}, {6, 53, 40, 20}}, 77},
        {"narrower than an item", 2, 20, {{6, 3, 40, 20}, {6, 28, 40, 20}}, 52},
        {"no width", 1, 0, {{6, 3, 40, 20}}, 27},
        {"no number", 1, std::nan(""), {{6, 3, 40, 20}}, 27},
    };
    const auto plain = make<NSCollectionViewFlowLayout>();
    const auto flipping = make<FlippingLayout>();
    for (const auto& layout : {plain, std::static_pointer_cast<NSCollectionViewFlowLayout>(flipping)}) {
        layout->setItemSize({40, 20});
        layout->setMinimumInteritemSpacing(10);
        layout->setMinimumLineSpacing(5);
        layout->setSectionInset({3, 6, 4, 8});
    }
    for (const auto& [what, count, width, want, height] : rows) {
        EXPECT_EQ(frames(*plain, count, width), want) << what;
        EXPECT_EQ(plain->contentHeight(count, width), height) << what;
        if (width > 0) {
            auto mirrored = want;
            for (NSRect& place : mirrored) place.origin.x = width - place.maxX();
            EXPECT_EQ(frames(*flipping, count, width), mirrored) << what << ", mirrored";
        }
    }
}

TEST(NSCollectionViewFlowLayout, WhenItIsMirrored) {
    using enum NSUserInterfaceLayoutDirection;
    using Direction = NSUserInterfaceLayoutDirection;
    const std::tuple<bool, std::optional<Direction>, Direction, double> rows[] = {
        {false, {}, LeftToRight, 0},          {true, {}, RightToLeft, 60},
        {false, RightToLeft, RightToLeft, 0}, {true, RightToLeft, RightToLeft, 60},
        {false, LeftToRight, LeftToRight, 0}, {true, LeftToRight, LeftToRight, 0},
    };
    for (const auto& [flips, set, direction, firstX] : rows) {
        const auto layout = flips ? std::shared_ptr<NSCollectionViewFlowLayout>(make<FlippingLayout>())
                                  : make<NSCollectionViewFlowLayout>();
        layout->setItemSize({40, 20});
        layout->setUserInterfaceLayoutDirection(set);
        EXPECT_EQ(layout->userInterfaceLayoutDirection(), direction) << flips << firstX;
        EXPECT_EQ(layout->layoutAttributes(1, 100)[0].frame.origin.x, firstX) << flips << firstX;
    }
}

TEST(NSCollectionViewFlowLayout, UnusableMeasuresCountAsNothing) {
    const auto layout = make<NSCollectionViewFlowLayout>();
    layout->setItemSize({std::nan(""), -5});
    layout->setMinimumInteritemSpacing(-10);
    layout->setMinimumLineSpacing(std::numeric_limits<double>::infinity());
    layout->setSectionInset({std::nan(""), -1, 0, std::numeric_limits<double>::infinity()});
    for (const NSRect& frame : frames(*layout, 100, 50)) {
        EXPECT_TRUE(frame.size == NSSize()) << frame.size.width;
        EXPECT_TRUE(std::isfinite(frame.origin.x) && frame.origin.y == 0) << frame.origin.x;
    }
    EXPECT_EQ(layout->contentHeight(100, 50), 0);
}

TEST(NSCollectionView, PlacesItsItemsAgainWhenItsWidthChanges) {
    const auto collection = make<NSCollectionView>(NSRect(0, 0, 100, 100));
    const auto layout = make<NSCollectionViewFlowLayout>();
    layout->setItemSize({40, 20});
    collection->setCollectionViewLayout(layout);
    const auto last = make<NSView>();
    collection->setItemViews({make<NSView>(), nullptr, make<NSView>(), last});
    collection->layoutSubtreeIfNeeded();
    EXPECT_EQ(last->frame(), NSRect(0, 30, 40, 20));
    EXPECT_EQ(collection->fittingSize(), (NSSize{100, 50}));
    collection->setFrame({0, 0, 140, 100});
    collection->layoutSubtreeIfNeeded();
    EXPECT_EQ(last->frame(), NSRect(100, 0, 40, 20));
    collection->setItemViews(collection->itemViews());
    EXPECT_EQ(collection->itemViews().size(), 3U);
}

}  // namespace
}  // namespace kx
