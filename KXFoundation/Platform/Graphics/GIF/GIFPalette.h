// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <optional>
#include <span>

#include <KXFoundation/Platform/Graphics/VectorSpeed.h>

namespace kx {

/// Turns indices into pixels: premultiplied 0xAARRGGBB in the machine's byte order. An index beyond the
/// file's palette is opaque black. All versions for different machines give the same pixels.
class GIFPalette {
  public:
    explicit GIFPalette(VectorSpeed speed = VectorSpeed::Best) noexcept;

    /// Takes the colours over; red, green and blue of each. Free if they are those at the same place as
    /// before.
    void use(std::span<const std::uint8_t> rgb) noexcept;

    /// Paints a row of indices. Pixels of the transparent index stay as they are.
    void paint(std::uint8_t* pixels, std::span<const std::uint8_t> indices,
               std::optional<std::uint8_t> transparent) const noexcept {
        if (transparent)
            paintOver_(*this, pixels, indices, *transparent);
        else
            paintAll_(*this, pixels, indices);
    }

  private:
    struct Plain;
    struct Wide;

    using PaintAll = void (*)(const GIFPalette&, std::uint8_t*, std::span<const std::uint8_t>) noexcept;
    using PaintOver = void (*)(const GIFPalette&, std::uint8_t*, std::span<const std::uint8_t>,
                               std::uint8_t) noexcept;

    alignas(64) std::array<std::uint32_t, 256> colours_;
    alignas(64) std::array<std::array<std::uint8_t, 256>, 3> channels_;  // blue, green, red
    std::span<const std::uint8_t> source_;
    PaintAll paintAll_;
    PaintOver paintOver_;
};

}  // namespace kx
