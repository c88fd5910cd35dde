// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <cstdlib>
#include <span>

#include <KXFoundation/Platform/Graphics/GIF/GIFFrame.h>

/// What both fuzzers of the GIF decoder ask of it.
namespace fuzz {

inline constexpr kx::GIFLimits kGIFLimits{.pixels = 1 << 20, .frames = 1000};

inline void require(bool holds) {
    if (!holds) std::abort();
}

/// Of a canvas's bytes; looks at every one of them.
inline void requireClearOrOpaque(std::span<const std::uint8_t> canvas) {
    for (std::size_t i = 0; i < canvas.size(); i += 4)
        require(canvas[i + 3] == 0xFF || (canvas[i] | canvas[i + 1] | canvas[i + 2] | canvas[i + 3]) == 0);
}

}  // namespace fuzz
