// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>

namespace kx {

/// How dark a shadow is at each pixel of a part of the plane.
struct ShadowMask {
    int x = 0;  ///< where its top left pixel lies
    int y = 0;
    int width = 0;
    int height = 0;
    int stride = 0;  ///< bytes from row to row, a multiple of 4 as Cairo wants it
    std::vector<std::uint8_t> coverage;
};

/// The blurred shape of a rounded rectangle, all in pixels, inside `bounds` only. Both directions are
/// constant in the middle of a large rectangle, so a version without its middle is blurred and the middle put
/// in when it is copied out: the cost is that of the corners, and the memory that of `bounds`.
[[nodiscard]] ShadowMask shadowMask(NSRect shape, double cornerRadius, double sigma, NSRect bounds);

}  // namespace kx
