// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kx {

enum class PHAssetMediaType : std::uint8_t { Image = 1, Video = 2 };

}  // namespace kx
