// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSColor;

/// Colours taken apart. No instances; any thread.
struct KX_EXPORT NSColor_RGBAComponents {
    NSColor_RGBAComponents() = delete;

    /// Writes red, green, blue and alpha, each 0 to 1 in the device's RGB, into the four numbers: those of
    /// the look of the moment for a semantic colour, zeros for an absent one. Does nothing without a place.
    static void getRGBAComponents(const NSColor* color, double* components) noexcept;
};

}  // namespace kx
