// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <span>

namespace kx {

/// The distance in pixels over which boxBlur spreads a pixel at this standard deviation.
[[nodiscard]] int boxBlurReach(double sigma);

/// Blurs a plane of coverage values in place, rows without gaps; what lies outside counts as 0. Three box
/// blurs in each direction, whose widths are chosen so that their variances add up to the Gaussian's (P.
/// Kovesi, "Fast Almost-Gaussian Filtering", 2010). The cost does not depend on sigma.
void boxBlur(std::span<std::uint8_t> plane, int width, int height, double sigma);

}  // namespace kx
