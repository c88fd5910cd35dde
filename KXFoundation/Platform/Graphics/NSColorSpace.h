// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

namespace kx {

/// The names of the colour spaces that bitmaps are made in.
inline constexpr std::string_view NSCalibratedRGBColorSpace = "NSCalibratedRGBColorSpace";
inline constexpr std::string_view NSDeviceRGBColorSpace = "NSDeviceRGBColorSpace";
inline constexpr std::string_view NSCustomColorSpace = "NSCustomColorSpace";

}  // namespace kx
