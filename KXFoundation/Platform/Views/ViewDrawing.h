#pragma once

#include <KXFoundation/Platform/Foundation/NSGeometry.h>

namespace kx {

class GraphicsContext;
class NSView;

/// Draws a view and everything in it, back to front. Private to Views.
class ViewDrawing {
  public:
    explicit ViewDrawing(GraphicsContext& context) : context_(context) {}

    /// What of the tree lies in `dirty`; both the context and the rectangle have the superview's coordinates.
    void draw(NSView& view, NSRect dirty);

  private:
    void drawContent(NSView& view, NSRect dirty);
    void drawSubviews(NSView& view, NSRect dirty);

    GraphicsContext& context_;
};

}  // namespace kx
