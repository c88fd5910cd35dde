// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>

namespace kx {

class NSColor;

/// What all controls have in common to look at; their colours are NSColor's semantic ones. Private to Views.
namespace ControlLook {

// Points.
inline constexpr double kCornerRadius = 6;
inline constexpr double kHeight = 28;
inline constexpr double kPadding = 10;     ///< between a control's side and its text
inline constexpr double kImageGap = 6;     ///< between a picture and its title
inline constexpr double kImageMargin = 4;  ///< above and below a picture in a button
inline constexpr double kDisabledOpacity = 0.4;

/// A rounded face with a border of one pixel.
void drawFace(GraphicsContext& context, NSRect rect, const NSColor& fill, const NSColor& border,
              double cornerRadius = kCornerRadius);

/// What tells that the control has the keys: a line inside its edge, in the accent colour or, on a face of
/// that colour, in that of the text upon it.
void drawFocusRing(GraphicsContext& context, NSRect rect, bool onAccent);

/// Runs `draw` in full strength or, for what is switched off, faded.
template <class Draw>
void drawEnabled(GraphicsContext& context, bool enabled, Draw draw) {
    if (enabled) return draw();
    GraphicsContext::Layer layer(context);
    draw();
    layer.putDown(kDisabledOpacity);
}

}  // namespace ControlLook
}  // namespace kx
