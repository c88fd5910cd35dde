// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kx {

/// Where a line stands between the two edges of its text. Natural: at the edge where its writing begins.
enum class NSTextAlignment : std::uint8_t { Left, Center, Right, Justified, Natural };

}  // namespace kx
