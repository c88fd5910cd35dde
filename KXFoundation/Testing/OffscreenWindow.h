// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <functional>
#include <memory>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/Platform/Views/OffscreenSurface.h>

namespace kx::testing {

/// A window on a screen that nobody sees, used by mouse and keyboard as a person would. For its scope every
/// window of the application goes to that screen of 1440 x 900 points; at the end all are closed.
///
///     OffscreenWindow shown([] { return openGreeting(); });
///     shown.click(*button);
///     shown.press("\t");
///     EXPECT_EQ(shown.pixel(10, 10), 0xFFFFFFFF);
///
/// Points are the content view's: from its top left corner, in points whatever the scale is. Main thread.
class KX_EXPORT OffscreenWindow {
  public:
    using Opening = std::function<std::shared_ptr<NSWindow>()>;

    /// An empty window with the keys; `scale` pixels to the point.
    explicit OffscreenWindow(NSSize size, double scale = 1, OffscreenPixels pixels = OffscreenPixels::Copied);
    /// The window that the application's own code opens and answers, brought to the front with the keys.
    explicit OffscreenWindow(const Opening& open, double scale = 1,
                             OffscreenPixels pixels = OffscreenPixels::Copied);
    ~OffscreenWindow();
    OffscreenWindow(const OffscreenWindow&) = delete;
    OffscreenWindow& operator=(const OffscreenWindow&) = delete;

    /// None once the window is closed, as for all below.
    [[nodiscard]] OffscreenSurface& surface() const {
        return static_cast<OffscreenSurface&>(*window->surface());
    }
    [[nodiscard]] NSView& content() const { return *window->contentView(); }

    // What a person does

    /// Presses and releases the mouse `count` times: 2 is a double click.
    void click(NSPoint at, int count = 1) const;
    /// In the middle of the view, in whichever window on the surface it is: whoever lies in front gets the
    /// click.
    void click(const NSView& view, int count = 1) const;
    void mouse(NSEventType type, NSPoint at) const;
    /// Presses at one point and releases at the other.
    void drag(NSPoint from, NSPoint to) const;
    /// Lines, towards the right and towards the top.
    void scroll(NSPoint at, NSPoint lines) const;
    /// Presses and releases a key: "a", "\t", NSDownArrowFunctionKey (see NSEvent.h).
    void press(std::string_view characters, NSEventModifierFlags flags = NSEventModifierFlags::None) const;
    /// Presses the key of each character in turn.
    void type(std::string_view text) const;

    // What the screen shows, once everything that is due has been done and drawn

    /// 0xAARRGGBB.
    [[nodiscard]] std::uint32_t pixel(std::uint32_t x, std::uint32_t y) const;
    /// By rows, from the top.
    [[nodiscard]] std::vector<std::uint32_t> pixels() const;
    /// A copy.
    [[nodiscard]] std::shared_ptr<NSBitmapImageRep> picture() const;

  private:
    [[nodiscard]] const NSBitmapImageRep& shown() const;

    ScopedPort<WindowSystem> system_;

  public:
    std::shared_ptr<NSWindow> window;
};

}  // namespace kx::testing
