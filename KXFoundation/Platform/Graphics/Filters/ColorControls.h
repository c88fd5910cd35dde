// SPDX-License-Identifier: MIT
#pragma once

#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Graphics/VectorSpeed.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// The colour-controls filter, on encoded values. With the luma Y = 0.2126 R + 0.7152 G + 0.0722 B (ITU-R
/// BT.709) each channel c becomes (Y + saturation (c - Y) + brightness - 0.5) contrast + 0.5, held to 0 to 1;
/// alpha stays. What is outside its range, or no number, is held to it.
struct ColorControls {
    double brightness = 0;  ///< -1 to 1
    double saturation = 1;  ///< 0 (grey) to 2
    double contrast = 1;    ///< 0 (middle grey) to 4
};

/// Fills `to`, which has the size of `from` and may be the same. Does nothing for another size. Any thread.
KX_EXPORT void applyColorControls(const NSBitmapImageRep& from, NSBitmapImageRep& to, ColorControls controls,
                                  VectorSpeed speed = VectorSpeed::Best);

}  // namespace kx
