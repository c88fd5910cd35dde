// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Foundation/NSGeometry.h>

typedef struct _cairo cairo_t;

namespace kx {

/// Adds a rectangle to the path, its corners rounded; the radius is held to half of the shorter side.
void addRoundedRect(cairo_t* cairo, NSRect rect, double cornerRadius);

/// Whether all four numbers are finite and both sides above 0.
[[nodiscard]] bool isDrawable(NSRect rect) noexcept;

/// The rectangle with its edges held to where Cairo's fixed-point coordinates can reach.
[[nodiscard]] NSRect withinReach(NSRect rect) noexcept;

}  // namespace kx
