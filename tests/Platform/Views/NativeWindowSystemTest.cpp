// SPDX-License-Identifier: MIT

#include <deque>

#include <gtest/gtest.h>

#include <KXFoundation/Platform/Foundation/NSNotificationCenter.h>
#include <KXFoundation/Platform/Foundation/NSNotificationNames.h>
#include <KXFoundation/Platform/Runtime/EventLoop.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSButton.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/Platform/Views/NativeWindowSystem.h>

namespace kx {
namespace {

/// A display that is an event queue: the module's table is plain functions, so its state is one struct here.
struct Display {
    std::deque<WindowModuleEvent> events;
    std::uint32_t windows = 0;
    std::vector<std::uint32_t> destroyed;
    std::vector<WindowModulePixelRect> presented;
    NSSize size;
} display;

constexpr WindowModule kModule{
    .version = WindowModule::kVersion,
    .driver = [] { return "fake"; },
    .createWindow =
        [](const char*, double width, double height) {
            display.size = {width, height};
            return ++display.windows;
        },
    .destroyWindow = [](std::uint32_t window) { display.destroyed.push_back(window); },
    .setTitle = [](std::uint32_t, const char*) {},
    .setSize =
        [](std::uint32_t, double width, double height) {
            display.size = {width, height};
        },
    .size =
        [](std::uint32_t, double* width, double* height) {
            *width = display.size.width;
            *height = display.size.height;
        },
    .raise = [](std::uint32_t) {},
    .scale = [](std::uint32_t) { return 1.0; },
    .present =
        [](std::uint32_t, const void*, std::int32_t, std::int32_t, std::int32_t,
           const WindowModulePixelRect* rects, std::int32_t count) {
            display.presented.assign(rects, rects + count);
            return true;
        },
    .descriptor = [] { return -1; },
    .nextEvent =
        [](WindowModuleEvent* event) {
            if (display.events.empty()) return false;
            *event = display.events.front();
            display.events.pop_front();
            return true;
        },
    .screenSize = [](double*, double*) { return false; },
};

struct NativeWindows : ::testing::Test {
    NativeWindows() { display = {}; }

    std::shared_ptr<NSWindow> open() {
        const auto window = make<NSWindow>(NSRect(0, 0, 100, 80));
        window->makeKeyAndOrderFront();
        return window;
    }
    /// The events come, and the loop makes a turn.
    void happens(std::vector<WindowModuleEvent> events) {
        display.events.insert(display.events.end(), events.begin(), events.end());
        while (EventLoop::main().drain()) {
        }
    }

    ScopedProcessState process;
    ScopedPort<WindowSystem> system{std::make_shared<NativeWindowSystem>(kModule)};
};

using enum WindowEventType;

/// Writes down what passes the controls.
class Listener : public Subclass<Listener, NSView> {
  public:
    void rightMouseDown(const NSEvent& event) override { note("right down", event.locationInWindow); }
    void rightMouseUp(const NSEvent& event) override { note("right up", event.locationInWindow); }
    void otherMouseDown(const NSEvent& event) override { note("other down", numbered(event)); }
    void otherMouseUp(const NSEvent& event) override { note("other up", numbered(event)); }
    void scrollWheel(const NSEvent& event) override {
        note("wheel", event.locationInWindow);
        note("by", event.scrollingDelta);
    }
    void keyDown(const NSEvent& event) override { told += event.characters; }
    bool acceptsFirstResponder() const override { return true; }
    std::string told;

  private:
    static NSPoint numbered(const NSEvent& event) {
        return {double(event.buttonNumber), event.locationInWindow.y};
    }
    void note(const std::string& what, NSPoint point) {
        told += what + " " + std::to_string(int(point.x)) + "," + std::to_string(int(point.y)) + " ";
    }
};

TEST_F(NativeWindows, PassesMouseKeysAndSizesToTheWindow) {
    const auto window = open();
    std::string told;
    const auto button = make<NSButton>(NSRect(10, 10, 50, 20));
    button->setAction([&](NSControl&) { told += "click "; });
    window->contentView()->addSubview(button);
    happens({{.type = MouseDown, .window = 1, .x = 20, .y = 20},
             {.type = MouseUp, .window = 1, .x = 20, .y = 20}});
    EXPECT_EQ(std::exchange(told, ""), "click ");
    happens({{.type = Text, .window = 1, .text = " "},
             {.type = KeyUp, .window = 1, .key = std::uint32_t(WindowKey::Space)}});
    EXPECT_EQ(std::exchange(told, ""), "click ");
    happens({{.type = Resized, .window = 1, .width = 120, .height = 90}});
    EXPECT_EQ(window->frame().size, (NSSize{120, 90}));
    happens({{.type = Exposed, .window = 1}});
    ASSERT_EQ(display.presented.size(), 1U);
    EXPECT_EQ(display.presented[0].width, 120) << "what was lost is shown again";

    display.presented.clear();
    happens({{.type = Minimized, .window = 1}, {.type = Exposed, .window = 1}});
    EXPECT_FALSE(window->isVisible());
    EXPECT_EQ(display.presented.size(), 0U) << "nobody would see it";
    happens({{.type = Restored, .window = 1}});
    EXPECT_TRUE(window->isVisible());
    EXPECT_EQ(display.presented.size(), 1U);
}

TEST_F(NativeWindows, OtherButtonsWheelAndCursorKeysPassControlsBy) {
    const auto window = open();
    const auto listener = make<Listener>();
    window->setContentView(listener);
    window->makeFirstResponder(listener);
    const auto button = make<NSButton>(NSRect(10, 10, 50, 20));
    button->setAction([&](NSControl&) { listener->told += "click "; });
    listener->addSubview(button);
    happens({{.type = MouseDown, .window = 1, .x = 20, .y = 20, .button = 1},
             {.type = MouseUp, .window = 1, .x = 20, .y = 21, .button = 1},
             {.type = MouseDown, .window = 1, .x = 20, .y = 22, .button = 2},
             {.type = MouseUp, .window = 1, .x = 20, .y = 23, .button = 4},
             {.type = Wheel, .window = 1, .x = 1, .y = -2},
             {.type = KeyDown, .window = 1, .key = std::uint32_t(WindowKey::Left)},
             {.type = KeyDown, .window = 1, .key = std::uint32_t(WindowKey::PageDown)}});
    EXPECT_EQ(listener->told,
              "right down 20,20 right up 20,21 other down 2,22 other up 4,23 wheel 20,23 by 1,-2 " +
                  std::string(NSLeftArrowFunctionKey) + std::string(NSPageDownFunctionKey));
}

TEST_F(NativeWindows, FocusMakesKeyAndActiveAndTellsOnceEach) {
    const auto first = open();
    const auto second = open();
    const auto application = NSApplication::sharedApplication();
    int posts = 0;
    const auto observer = NSNotificationCenter::defaultCenter().addObserverForName(
        NSApplicationWillBecomeActiveNotification, nullptr, [&](const NSNotification&) { ++posts; });
    const std::tuple<const char*, std::vector<WindowModuleEvent>, std::shared_ptr<NSWindow>, bool, int>
        rows[] = {
            {"first", {{.type = FocusGained, .window = 1}}, first, true, 1},
            {"gain, loss",
             {{.type = FocusGained, .window = 2}, {.type = FocusLost, .window = 1}},
             second,
             true,
             0},
            {"loss, gain",
             {{.type = FocusLost, .window = 2}, {.type = FocusGained, .window = 1}},
             first,
             true,
             0},
            {"and back", {{.type = FocusGained, .window = 2}}, second, true, 0},
            {"lost", {{.type = FocusLost, .window = 2}}, second, false, 0},
            {"back", {{.type = FocusGained, .window = 2}}, second, true, 1},
            {"closed with it", {{.type = CloseRequested, .window = 2}}, first, false, 0},
        };
    for (const auto& [what, events, key, active, want] : rows) {
        posts = 0;
        happens(events);
        EXPECT_EQ(application->keyWindow(), key) << what;
        EXPECT_TRUE(key->isMainWindow()) << what;
        EXPECT_EQ(application->isActive(), active) << what;
        EXPECT_EQ(posts, want) << what;
    }
}

TEST_F(NativeWindows, AnEventMayEndTheSystemThatItCameThrough) {
    std::shared_ptr<NSWindow> window;
    {
        const ScopedPort<WindowSystem> passing(std::make_shared<NativeWindowSystem>(kModule));
        window = open();
    }
    happens({{.type = CloseRequested, .window = 1}});
    EXPECT_EQ(window->surface(), nullptr);
}

TEST_F(NativeWindows, ASurfaceMayOutliveWhatMadeIt) {
    auto window = open();
    auto surface = window->surface();
    window->close();
    window.reset();
    {
        const ScopedPort<WindowSystem> other(std::make_shared<NativeWindowSystem>(kModule));
        happens({{.type = FocusGained, .window = 1}, {.type = Quit}});
    }
    EXPECT_TRUE(display.destroyed.empty());
    surface.reset();
    EXPECT_EQ(display.destroyed, std::vector<std::uint32_t>{1});
}

}  // namespace
}  // namespace kx
