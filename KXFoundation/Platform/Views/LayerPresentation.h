// SPDX-License-Identifier: MIT
#pragma once

#include <chrono>
#include <optional>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// What animations make of a layer at one moment. Private to Views.
struct KX_EXPORT LayerPresentation {
    double rotation = 0;  ///< radians, clockwise about the middle
    NSPoint offset;       ///< from where the view lies
    std::optional<double> opacity;

    [[nodiscard]] bool moves() const noexcept { return rotation != 0 || offset != NSPoint(); }
    /// The smallest upright rectangle around a rectangle of the view's coordinates as it is shown, the view
    /// having that size.
    [[nodiscard]] NSRect moved(NSRect rect, NSSize size) const;
};

}  // namespace kx
