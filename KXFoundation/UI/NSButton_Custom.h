// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSButton;
class NSView;

/// Lets a button answer clicks in an area larger than itself. The area reaches as far as the superview's own
/// bounds let clicks in. Main thread.
struct KX_EXPORT NSButton_Custom {
    NSButton_Custom() = delete;

    // The association keys of the four edges.
    static const char topNameKey;
    static const char leftNameKey;
    static const char bottomNameKey;
    static const char rightNameKey;

    /// Points beyond the button's edges, kept as 32-bit floats. Negative ones take nothing away from the
    /// button.
    static void setEnlargeEdge(const std::shared_ptr<NSButton>& button, double edge);
    static void setEnlargeEdgeWithTop(const std::shared_ptr<NSButton>& button, double top, double left,
                                      double bottom, double right);
    /// In the button's own coordinates; its bounds while no edge was set.
    [[nodiscard]] static NSRect enlargedRect(const std::shared_ptr<NSButton>& button);

    /// What every button's "hitTest:" runs: the button itself for a point of the enlarged area, else what the
    /// plain hit test answers. The point is in the superview's coordinates. A view does not ask
    /// buttons that are hidden or have no opacity, so no click reaches those.
    [[nodiscard]] static std::shared_ptr<NSView> hitTest(const std::shared_ptr<NSButton>& button,
                                                         NSPoint point);
};

}  // namespace kx
