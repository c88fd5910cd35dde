// SPDX-License-Identifier: MIT

#include <map>

#include <KXFoundation/Testing/CapturedLog.h>

#include "ViewFixture.h"

namespace kx {
namespace {

using ::testing::ElementsAre;
using ::testing::HasSubstr;
using ::testing::IsEmpty;

/// Writes its hooks down and runs what the test wants inside them.
class HookedView : public Subclass<HookedView, NSView> {
  public:
    std::vector<std::string> calls;
    std::map<std::string, std::function<void()>> inside;

    void viewWillMoveToSuperview(const std::shared_ptr<NSView>& view) override {
        note(view ? "will move in" : "will move out");
    }
    void viewDidMoveToSuperview() override { note(superview() ? "did move in" : "did move out"); }
    void viewWillMoveToWindow(const std::shared_ptr<NSWindow>& window) override {
        note(window ? "will enter window" : "will leave window");
    }
    void viewDidMoveToWindow() override { note(window() ? "did enter window" : "did leave window"); }
    void didAddSubview(NSView&) override { note("did add"); }
    void willRemoveSubview(NSView&) override { note("will remove"); }
    void mouseDown(const NSEvent&) override { note("mouse down"); }
    void mouseUp(const NSEvent&) override { note("mouse up"); }
    void drawRect(GraphicsContext&, NSRect) override { note("draw"); }
    void viewDidShowOrHide() override { run("show"); }
    bool acceptsFirstResponder() const override { return true; }
    bool resignFirstResponder() override {
        run("resign");
        return true;
    }
    std::shared_ptr<NSView> hitTest(NSPoint point) override {
        run("hit test");
        return Super::hitTest(point);
    }

  private:
    void note(const std::string& what) {
        calls.push_back(what);
        run(what);
    }
    void run(const std::string& what) {
        const auto found = inside.find(what);
        if (found == inside.end()) return;
        const auto call = found->second;  // it may clear the list, and drop this view
        call();
    }
};

struct ViewTree : ::testing::Test {
    testing::OffscreenWindow shown{{100, 100}};
    std::shared_ptr<HookedView> view = make<HookedView>(NSRect(0, 0, 50, 50));
    std::shared_ptr<HookedView> other = make<HookedView>(NSRect(0, 0, 100, 100));
};

TEST_F(ViewTree, HooksInOrder) {
    shown.content().addSubview(other);
    other->calls.clear();
    other->addSubview(view);
    EXPECT_THAT(view->calls,
                ElementsAre("will move in", "will enter window", "did move in", "did enter window"));
    view->calls.clear();
    view->removeFromSuperview();
    EXPECT_THAT(view->calls,
                ElementsAre("will move out", "will leave window", "did leave window", "did move out"));
    EXPECT_THAT(other->calls, ElementsAre("did add", "will remove"));
}

TEST_F(ViewTree, AddingMovesToTheFrontAndAwayFromElsewhere) {
    const auto root = make<NSView>();
    root->addSubview(view);
    root->addSubview(other);
    root->addSubview(view);
    EXPECT_THAT(root->subviews(), ElementsAre(other, view));
    other->addSubview(root->subviews().back());
    EXPECT_THAT(root->subviews(), ElementsAre(other));
    EXPECT_EQ(view->superview(), other);
    root->addSubview(nullptr);
    EXPECT_THAT(root->subviews(), ElementsAre(other));
}

TEST_F(ViewTree, ACycleIsACallerError) {
    const testing::CapturedLog log;
    const testing::LenientMode lenient;
    view->addSubview(other);
    other->addSubview(view);
    other->addSubview(other);
    EXPECT_THAT(log.lines(), ElementsAre(HasSubstr("into itself"), HasSubstr("into itself")));
    EXPECT_EQ(other->superview(), view);
}

TEST_F(ViewTree, ASuperviewThatDiesIsForgotten) {
    auto root = make<NSView>();
    root->addSubview(view);
    root = nullptr;
    EXPECT_EQ(view->superview(), nullptr);
    EXPECT_EQ(view->nextResponder(), nullptr);
}

TEST_F(ViewTree, TheContentViewIsInTheWindowAndCanLeaveIt) {
    shown.window->setContentView(view);
    EXPECT_EQ(view->window(), shown.window);
    EXPECT_EQ(view->frame(), NSRect(0, 0, 100, 100));
    EXPECT_EQ(view->nextResponder(), shown.window);
    view->removeFromSuperview();
    EXPECT_EQ(view->window(), nullptr);
    EXPECT_EQ(shown.window->contentView(), nullptr);
    shown.window->displayIfNeeded();
    shown.surface().click({10, 10});
}

TEST_F(ViewTree, AViewRemovedInsideItsOwnHooks) {
    for (const std::string hook :
         {"will move in", "will enter window", "did move in", "did enter window", "will move out",
          "will leave window", "did leave window", "did move out"}) {
        const auto moving = make<HookedView>();
        moving->inside[hook] = [&] { moving->removeFromSuperview(); };
        shown.content().addSubview(moving);
        moving->removeFromSuperview();
        EXPECT_EQ(moving->superview(), nullptr) << hook;
        EXPECT_THAT(shown.content().subviews(), IsEmpty()) << hook;
        EXPECT_LE(moving->calls.size(), 10U) << hook;
        moving->inside.clear();
    }
}

TEST_F(ViewTree, ATreeThatChangesInsideHooksStaysATree) {
    for (const std::string hook : {"will move in", "will enter window", "did move in"}) {
        const auto root = make<HookedView>();
        const auto moving = make<HookedView>();
        shown.content().addSubview(root);
        moving->inside[hook] = [&] {
            root->removeFromSuperview();
            if (moving->superview() != root) moving->addSubview(root);
        };
        root->addSubview(moving);
        EXPECT_FALSE(root->isDescendantOf(*moving) && moving->isDescendantOf(*root)) << hook;
        moving->inside.clear();
    }
}

TEST_F(ViewTree, AViewThatGoesInItsOwnEventOrDrawing) {
    for (const std::string moment : {"mouse down", "mouse up", "draw"}) {
        auto passing = make<HookedView>(NSRect(0, 0, 50, 50));
        const std::weak_ptr<NSView> watched = passing;
        shown.content().addSubview(passing);
        passing->inside[moment] = [raw = passing.get()] { raw->removeFromSuperview(); };
        passing = nullptr;
        shown.surface().click({10, 10});
        shown.window->displayIfNeeded();
        EXPECT_TRUE(watched.expired()) << moment;
    }
}

TEST_F(ViewTree, AWindowThatGoesWhileItIsAtWork) {
    const std::pair<std::string, std::function<void()>> rows[] = {
        {"mouse down", [&] { shown.click(*view); }},
        {"hit test",
         [&] {
             shown.mouse(NSEventType::MouseMoved, NSPoint{10, 10});
         }},
        {"will leave window", [&] { shown.window->setContentView(nullptr); }},
        {"will enter window", [&] { shown.window->setContentView(other); }},
        {"resign", [&] { shown.window->makeFirstResponder(nullptr); }},
        {"resign", [&] { shown.window->selectNextKeyView(); }},
        {"show", [&] { make<NSWindow>()->addChildWindow(shown.window, NSWindowOrderingMode::Above); }},
    };
    for (const auto& [moment, work] : rows) {
        shown.window = make<NSWindow>(NSRect(0, 0, 100, 100));
        shown.window->makeKeyAndOrderFront();
        shown.window->setContentView(view);
        shown.window->makeFirstResponder(view);
        view->addSubview(make<HookedView>());
        const std::weak_ptr<NSWindow> watched = shown.window;
        view->inside[moment] = other->inside[moment] = [&] {
            view->inside.clear();
            other->inside.clear();
            shown.window->close();
            shown.window = nullptr;
            view = make<HookedView>(NSRect(0, 0, 50, 50));
        };
        work();
        EXPECT_EQ(shown.window, nullptr) << moment;
        EXPECT_TRUE(watched.expired()) << moment;
    }
}

}  // namespace
}  // namespace kx
