// SPDX-License-Identifier: MIT
#pragma once

#include <functional>
#include <memory>
#include <optional>
#include <span>
#include <string_view>
#include <variant>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/PortSlot.h>
#include <KXFoundation/Platform/Views/InvalidRegion.h>
#include <KXFoundation/Platform/Views/NSEvent.h>

namespace kx {

class NSBitmapImageRep;

// What a surface tells its window, beside NSEvent.
struct SurfaceResized {};  ///< size or scale are new
struct SurfaceExposed {};  ///< what was presented is lost
struct SurfaceCloseRequested {};
struct SurfaceMiniaturized {
    bool miniaturized;  ///< the desktop has put the window away, or brings it back
};
struct SurfaceFocusChanged {
    bool focused;
};
using SurfaceEvent = std::variant<NSEvent, SurfaceResized, SurfaceExposed, SurfaceCloseRequested,
                                  SurfaceMiniaturized, SurfaceFocusChanged>;

/// The port under a native window: where its pixels go and its events come from. The window is destroyed with
/// its surface. Main thread.
class KX_EXPORT WindowSurface {
  public:
    virtual ~WindowSurface() = default;

    /// Points.
    [[nodiscard]] virtual NSSize size() const = 0;
    /// Pixels to the point; 1, 1.25, 2 and the like.
    [[nodiscard]] virtual double scale() const = 0;
    /// Pixels of the surface's own for the window to draw into, in number size() times scale(); present()
    /// then shows them. None, and the window has its own.
    [[nodiscard]] virtual std::shared_ptr<NSBitmapImageRep> lentPixels(std::uint32_t wide,
                                                                       std::uint32_t high);
    /// Shows the bitmap, which is size() times scale() pixels; only `changed` differs from the one before.
    virtual void present(const NSBitmapImageRep& bitmap, std::span<const PixelRect> changed) = 0;
    virtual void setFrame(NSRect frame) = 0;
    virtual void setTitle(std::string_view title) = 0;
    /// Brings the window to the front and the keyboard to it.
    virtual void activate() = 0;
};

/// The port that surfaces come from. The default adapter opens windows on the desktop's display.
class KX_EXPORT WindowSystem {
  public:
    /// Called on the main thread, between two calls of the library.
    using Handler = std::function<void(const SurfaceEvent&)>;

    virtual ~WindowSystem() = default;

    /// A surface for a window of that frame (points, on the screen); none if there is no display to show it
    /// on.
    [[nodiscard]] virtual std::shared_ptr<WindowSurface> makeSurface(NSRect frame, Handler handler) = 0;

    /// The main screen's size in points; none if there is no display.
    [[nodiscard]] virtual std::optional<NSSize> mainScreenSize() { return std::nullopt; }

    static PortSlot<WindowSystem>& slot();
    static std::shared_ptr<WindowSystem> makeDefault();
};

}  // namespace kx
