// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Graphics/VectorSpeed.h>

namespace kx {

#if defined(__x86_64__)

VectorSpeed availableSpeed(VectorSpeed wanted) noexcept {
    static const bool hasWide = __builtin_cpu_supports("avx2");
    return wanted == VectorSpeed::Best && !hasWide ? VectorSpeed::Baseline : wanted;
}

#else

VectorSpeed availableSpeed(VectorSpeed) noexcept {
    return VectorSpeed::Plain;
}

#endif

}  // namespace kx
