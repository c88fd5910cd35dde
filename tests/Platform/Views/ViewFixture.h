#pragma once

#include <memory>
#include <vector>

#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/Platform/Views/OffscreenSurface.h>

namespace kx::testing {

inline constexpr std::uint32_t kRed = 0xFFFF0000;
inline constexpr std::uint32_t kBlue = 0xFF0000FF;

/// A view with a layer of that colour.
inline std::shared_ptr<NSView> filled(NSRect frame, std::uint32_t color) {
    auto view = make<NSView>(frame);
    view->setWantsLayer(true);
    view->layer()->setBackgroundColor(NSColor::colorWithRed(color == kRed, 0, color == kBlue, 1));
    return view;
}

/// An application of its own with one off-screen window on the screen.
class OffscreenWindow {
  public:
    explicit OffscreenWindow(NSSize size, double scale = 1, OffscreenPixels pixels = OffscreenPixels::Copied)
        : system_(std::make_shared<OffscreenWindowSystem>(scale, NSSize{1440, 900}, pixels)),
          window(make<NSWindow>(NSRect({}, size))) {
        window->makeKeyAndOrderFront();
    }

    [[nodiscard]] OffscreenSurface& surface() const {
        return static_cast<OffscreenSurface&>(*window->surface());
    }
    [[nodiscard]] NSView& content() const { return *window->contentView(); }
    void mouse(NSEventType type, NSPoint at) const {
        surface().send(NSEvent{.type = type, .locationInWindow = at});
    }

    // What a screen shows once all that is due has been drawn.
    [[nodiscard]] std::uint32_t pixel(std::uint32_t x, std::uint32_t y) const {
        window->displayIfNeeded();
        return surface().bitmap()->pixelAt(x, y);
    }
    [[nodiscard]] std::vector<std::uint32_t> pixels() const {
        window->displayIfNeeded();
        const auto all = surface().bitmap()->pixels();
        return {all.begin(), all.end()};
    }

  private:
    ScopedProcessState process_;
    ScopedPort<WindowSystem> system_;

  public:
    std::shared_ptr<NSWindow> window;
};

}  // namespace kx::testing
