// SPDX-License-Identifier: MIT

#include <stdexcept>

#include <KXFoundation/Platform/Views/NSLayoutConstraint.h>
#include <KXFoundation/Platform/Views/NSTextField.h>
#include <KXFoundation/Testing/CapturedLog.h>

#include "ViewFixture.h"

namespace kx {
namespace {

using enum NSLayoutAttribute;

/// Two labels in a view of 200 x 100; a label without constraints asks for its text's size.
struct Constraints : ::testing::Test {
    Constraints() {
        for (const auto& view : {a, b}) {
            view->setEditable(false);
            view->setStringValue("Label");
            view->setTranslatesAutoresizingMaskIntoConstraints(false);
            root->addSubview(view);
        }
    }
    static std::shared_ptr<NSLayoutConstraint> equal(const std::shared_ptr<NSView>& first,
                                                     NSLayoutAttribute attribute,
                                                     const std::shared_ptr<NSView>& second,
                                                     NSLayoutAttribute other, double constant = 0) {
        auto made = NSLayoutConstraint::constraintWithItem(first, attribute, second, other, constant);
        made->setActive(true);
        return made;
    }

    testing::CapturedLog log;
    std::shared_ptr<NSView> root = make<NSView>(NSRect(0, 0, 200, 100));
    std::shared_ptr<NSTextField> a = make<NSTextField>(NSRect(1, 2, 3, 4));
    std::shared_ptr<NSTextField> b = make<NSTextField>(NSRect(5, 6, 7, 8));
};

TEST_F(Constraints, ValuesAreHandedOnAndTheRestFitsTheContent) {
    const NSSize text = a->fittingSize();
    equal(a, Trailing, b, Leading, -8);  // nothing is known of either yet
    equal(b, CenterY, a, CenterY);
    equal(a, Leading, root, Leading, 10);
    equal(a, Bottom, root, Bottom, -10);
    equal(b, Right, root, Right, -20);
    NSLayoutConstraint::constraintWithItem(b, Height, 30)->setActive(true);
    root->layoutSubtreeIfNeeded();
    const NSRect first(10, 90 - text.height, text.width, text.height);
    EXPECT_EQ(a->frame(), first);
    EXPECT_EQ(b->frame(),
              NSRect(18 + text.width, first.origin.y + text.height / 2 - 15, 200 - 20 - 18 - text.width, 30));
    a->setStringValue("A longer label");
    root->layoutSubtreeIfNeeded();
    EXPECT_EQ(a->frame().size.width, a->fittingSize().width) << "it follows its text";
    EXPECT_EQ(b->frame().origin.x, a->frame().maxX() + 8);
    root->setUserInterfaceLayoutDirection(NSUserInterfaceLayoutDirection::RightToLeft);
    root->layoutSubtreeIfNeeded();
    EXPECT_EQ(a->frame().maxX(), 190) << "leading is on the right";
    EXPECT_EQ(b->frame().maxX(), 180) << "right stays right";
    EXPECT_TRUE(log.lines().empty());
}

TEST_F(Constraints, ALateConflictIsLeftOutWithOneLine) {
    equal(a, Left, b, Left);
    equal(a, Left, root, Left, 10);
    const auto late = equal(b, Left, root, Left, 20);
    for (const double width : {200.0, 300.0}) {
        root->setFrame({0, 0, width, 100});
        root->layoutSubtreeIfNeeded();
        EXPECT_EQ(a->frame().origin.x, 10);
        EXPECT_EQ(b->frame().origin.x, 10);
    }
    ASSERT_EQ(log.lines().size(), 1U);
    EXPECT_NE(log.lines()[0].find(late->description()), std::string::npos) << log.lines()[0];
    late->setConstant(10);
    a->setTranslatesAutoresizingMaskIntoConstraints(true);
    a->setFrame({33, 2, 3, 4});
    root->layoutSubtreeIfNeeded();
    EXPECT_EQ(a->frame(), NSRect(33, 2, 3, 4)) << "its own frame counts first";
}

TEST_F(Constraints, CyclesAreHarmless) {
    equal(a, Left, b, Right, 4);
    equal(b, Left, a, Right, 4);
    equal(a, Width, b, Height);
    equal(b, Height, a, Width);
    equal(a, Top, a, Bottom);
    root->layoutSubtreeIfNeeded();
    EXPECT_EQ(a->frame().size.width, b->frame().size.height);
    EXPECT_EQ(log.lines().size(), 2U) << "one of the first two cannot hold, nor the last";
}

TEST_F(Constraints, TheyEndWhenAViewLeaves) {
    const auto inner = make<NSView>(NSRect(50, 20, 100, 50));
    root->addSubview(inner);
    inner->addSubview(b);
    const auto across = equal(b, Left, a, Left, 7);
    const auto inside = equal(b, Top, inner, Top, 9);
    equal(a, Left, root, Left, 60);
    root->layoutSubtreeIfNeeded();
    EXPECT_EQ(b->frame().origin, (NSPoint{17, 9})) << "60 + 7 in the coordinates of the inner view";
    inner->removeFromSuperview();
    EXPECT_FALSE(across->isActive());
    EXPECT_TRUE(inside->isActive());
    root->layoutSubtreeIfNeeded();
    const testing::LenientMode lenient;
    across->setActive(true);
    EXPECT_FALSE(across->isActive()) << "nothing holds both";
    EXPECT_EQ(NSLayoutConstraint::constraintWithItem(a, Left, b, Top), nullptr);
    EXPECT_EQ(NSLayoutConstraint::constraintWithItem(a, Left, b, Width), nullptr);
    EXPECT_EQ(NSLayoutConstraint::constraintWithItem(a, Left, 5), nullptr);
}

/// Does something while it is asked for its size.
struct Meddler : Subclass<Meddler, NSView> {
    NSSize fittingSize() const override {
        meddle();
        return {10, 10};
    }
    std::function<void()> meddle;
};

TEST_F(Constraints, AViewMayChangeTheTreeWhileTheyAreSolved) {
    const auto holder = make<NSView>(NSRect(0, 0, 50, 50));
    const auto meddler = make<Meddler>();
    meddler->setTranslatesAutoresizingMaskIntoConstraints(false);
    root->addSubview(holder);
    root->addSubview(meddler);
    holder->addSubview(b);
    equal(meddler, Left, root, Left, 3);
    equal(a, Left, meddler, Right, 3);
    equal(b, Left, a, Right, 3);
    meddler->meddle = [] { throw std::runtime_error("no size"); };
    EXPECT_THROW(root->layoutSubtreeIfNeeded(), std::runtime_error);
    meddler->meddle = [&] {
        root->layoutSubtreeIfNeeded();
        if (!b) return;
        holder->removeFromSuperview();
        for (auto* view : {&a, &b}) std::exchange(*view, nullptr)->removeFromSuperview();
    };
    root->setNeedsLayout();
    root->layoutSubtreeIfNeeded();
    root->layoutSubtreeIfNeeded();
    EXPECT_EQ(meddler->frame().origin.x, 3) << "after one that threw";
}

}  // namespace
}  // namespace kx
