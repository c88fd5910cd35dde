// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// The two looks of a desktop. Semantic colours (NSColor::textColor() and its like) have a value for each.
enum class NSAppearance : std::uint8_t { Light, Dark };

/// The look that the calling thread draws in; Light until a scope says otherwise.
[[nodiscard]] KX_EXPORT NSAppearance currentAppearance() noexcept;

/// Sets the calling thread's look for one scope, as a window does around the drawing of its views.
class KX_EXPORT ScopedAppearance {
  public:
    explicit ScopedAppearance(NSAppearance appearance) noexcept;
    ~ScopedAppearance();
    ScopedAppearance(const ScopedAppearance&) = delete;
    ScopedAppearance& operator=(const ScopedAppearance&) = delete;

  private:
    NSAppearance former_;
};

}  // namespace kx
