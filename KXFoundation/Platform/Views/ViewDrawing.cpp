#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/ViewDrawing.h>

namespace kx {

void ViewDrawing::draw(NSView& view, NSRect dirty) {
    if (!view.isSeen()) return;
    const auto held = view.self();
    const GraphicsContext::SavedState state(context_);
    const NSPoint origin = view.frame().origin;
    context_.translate(origin.x, origin.y);
    dirty = dirty.movedBy({-origin.x, -origin.y});
    const double opacity = view.alphaValue();
    if (opacity < 1) context_.beginLayer();
    drawContent(view, dirty);
    drawSubviews(view, dirty);
    if (opacity < 1) context_.endLayer(opacity);
}

// A clip across pixels would blend a view's edge differently with every rectangle that is drawn: clips lie on pixel edges.
void ViewDrawing::drawContent(NSView& view, NSRect dirty) {
    dirty = dirty.intersection(view.bounds());
    if (dirty.isEmpty()) return;
    const GraphicsContext::SavedState state(context_);
    context_.clip(context_.pixelAligned(view.bounds()));
    view.drawRect(context_, dirty);
}

void ViewDrawing::drawSubviews(NSView& view, NSRect dirty) {
    if (view.clipsToBounds()) {
        dirty = dirty.intersection(view.bounds());
        if (dirty.isEmpty()) return;
        context_.clip(context_.pixelAligned(view.bounds()));
    }
    const auto subviews = view.subviews();  // drawing may run application code that changes the tree
    for (const auto& subview : subviews) draw(*subview, dirty);
}

}  // namespace kx
