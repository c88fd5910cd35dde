// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Which of the machine's instructions a loop over pixels may use. Every choice gives the same pixels.
enum class VectorSpeed : std::uint8_t {
    Plain,     ///< none beyond the language
    Baseline,  ///< what every machine of the architecture has: SSE2 on x86-64
    Best,      ///< what this machine has beyond that: AVX2
};

/// The best that this machine has up to the wanted one.
[[nodiscard]] KX_EXPORT VectorSpeed availableSpeed(VectorSpeed wanted) noexcept;

}  // namespace kx
