// SPDX-License-Identifier: MIT

#include <algorithm>
#include <optional>

#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Views/CALayer.h>
#include <KXFoundation/Platform/Views/FrameTimer.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/ViewDrawing.h>

namespace kx {

/// Asked of every view for every rectangle that is drawn; nearly all of them are plain and elsewhere.
bool ViewDrawing::canMark(const NSView& view, NSRect dirty) {
    if (!view.frame().intersection(dirty).isEmpty()) return true;
    if (!view.clipsToBounds() && !view.subviews().empty()) return true;
    const CALayer* layer = view.layer().get();
    if (!layer || (layer->shadowOpacity_ <= 0 && !layer->presentation_.moves())) return false;
    return !view.placedInSuperview(view.ownExtent()).intersection(dirty).isEmpty();
}

void ViewDrawing::draw(NSView& view, NSRect dirty) {
    if (!canMark(view, dirty) || !view.isDrawn()) return;
    const auto held = view.self();  // drawing may run application code that changes the tree
    const GraphicsContext::SavedState state(context_);
    dirty = enter(view, dirty);
    const double opacity = view.shownAlpha();
    std::optional<GraphicsContext::Layer> layer;
    if (opacity < 1) layer.emplace(context_);
    drawLayer(view, dirty);
    drawContent(view, dirty);
    drawSubviews(view, dirty);
    if (layer) layer->putDown(opacity);
    if (const auto& own = view.layer(); own && own->animates_) FrameTimer::didDraw(own);
}

/// Gives the context the view's coordinates and answers `dirty` in them.
NSRect ViewDrawing::enter(const NSView& view, NSRect dirty) {
    const NSPoint origin = view.frame().origin;
    context_.translate(origin.x, origin.y);
    if (!view.layer() || !view.layer()->presentation_.moves()) return dirty.movedBy({-origin.x, -origin.y});
    const LayerPresentation& shown = view.layer()->presentation_;
    const NSSize size = view.frame().size;
    context_.translate(shown.offset.x + size.width / 2, shown.offset.y + size.height / 2);
    context_.rotate(shown.rotation);
    context_.translate(-size.width / 2, -size.height / 2);
    return view.drawnExtent();
}

void ViewDrawing::drawLayer(const NSView& view, NSRect dirty) {
    const auto& layer = view.layer();
    if (!layer || !layer->background_ || view.ownExtent().intersection(dirty).isEmpty()) return;
    const NSRect shape = context_.pixelAligned(view.bounds());
    if (layer->throwsShadow()) {
        const auto& color = layer->shadowColor_;
        context_.drawShadow(shape, layer->cornerRadius_,
                            {color->colorWithAlphaComponent(color->alphaComponent() * layer->shadowOpacity_),
                             layer->shadowRadius_, layer->shadowOffset_});
    }
    context_.fill(shape, layer->cornerRadius_, *layer->background_);
}

// A clip across pixels would blend a view's edge differently with every rectangle that is drawn: clips lie on
// pixel edges.
void ViewDrawing::drawContent(NSView& view, NSRect dirty) {
    dirty = dirty.intersection(view.bounds());
    if (dirty.isEmpty()) return;
    std::optional<GraphicsContext::SavedState> state;
    if (!view.subviews().empty()) state.emplace(context_);  // they are not cut by this clip
    clipToBounds(view);
    view.drawRect(context_, dirty);
}

void ViewDrawing::drawSubviews(NSView& view, NSRect dirty) {
    if (view.subviews().empty()) return;
    if (view.clipsToBounds()) {
        dirty = dirty.intersection(view.bounds());
        if (dirty.isEmpty()) return;
        clipToBounds(view);
    }
    const auto& subviews = view.subviews();
    const std::size_t count = subviews.size();  // what drawing adds is drawn the next time
    for (std::size_t i = 0; i < std::min(count, subviews.size()); ++i) draw(*subviews[i], dirty);
}

/// Rounded where the view cuts what it holds at rounded corners.
void ViewDrawing::clipToBounds(const NSView& view) {
    const double radius = view.clipsToBounds() && view.layer() ? view.layer()->cornerRadius_ : 0;
    context_.clip(context_.pixelAligned(view.bounds()), radius);
}

}  // namespace kx
