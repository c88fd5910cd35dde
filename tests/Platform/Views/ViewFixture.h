#pragma once

#include <memory>

#include <KXFoundation/Platform/Runtime/ProcessState.h>
#include <KXFoundation/Platform/Views/NSApplication.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>
#include <KXFoundation/Platform/Views/OffscreenSurface.h>

namespace kx::testing {

/// An application of its own with one off-screen window on the screen.
class OffscreenWindow {
  public:
    explicit OffscreenWindow(NSSize size, double scale = 1)
        : system_(std::make_shared<OffscreenWindowSystem>(scale)), window(make<NSWindow>(NSRect({}, size))) {
        window->makeKeyAndOrderFront();
    }

    [[nodiscard]] OffscreenSurface& surface() const {
        return static_cast<OffscreenSurface&>(*window->surface());
    }
    [[nodiscard]] NSView& content() const { return *window->contentView(); }

  private:
    ScopedProcessState process_;
    ScopedPort<WindowSystem> system_;

  public:
    std::shared_ptr<NSWindow> window;
};

}  // namespace kx::testing
