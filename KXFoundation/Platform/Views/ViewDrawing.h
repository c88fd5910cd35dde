// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Foundation/NSGeometry.h>

namespace kx {

class GraphicsContext;
class NSView;

/// Draws a view and everything in it, back to front: its layer's shadow and background, its own drawing, its
/// subviews. Private to Views.
class ViewDrawing {
  public:
    explicit ViewDrawing(GraphicsContext& context) : context_(context) {}

    /// What of the tree lies in `dirty`; both the context and the rectangle have the superview's coordinates.
    void draw(NSView& view, NSRect dirty);

  private:
    [[nodiscard]] static bool canMark(const NSView& view, NSRect dirty);
    [[nodiscard]] NSRect enter(const NSView& view, NSRect dirty);
    void drawLayer(const NSView& view, NSRect dirty);
    void drawContent(NSView& view, NSRect dirty);
    void drawSubviews(NSView& view, NSRect dirty);
    void clipToBounds(const NSView& view);

    GraphicsContext& context_;
};

}  // namespace kx
