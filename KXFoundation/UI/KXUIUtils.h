#pragma once

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Layout and text operations. No instances.
class KX_EXPORT KXUIUtils {
  public:
    KXUIUtils() = delete;

    // Sizes. Any thread.

    /// The size with 1 for each side that is exactly 0; every other value, negative or a fraction, stays.
    [[nodiscard]] static constexpr NSSize getNotZeroCGSize(NSSize size) noexcept {
        return {size.width == 0 ? 1 : size.width, size.height == 0 ? 1 : size.height};
    }
};

}  // namespace kx
