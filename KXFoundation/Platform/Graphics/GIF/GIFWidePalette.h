// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <cstdint>
#include <span>

namespace kx {

/// Painting 64 pixels a step on machines whose byte permutations (AVX-512 VBMI) hold a whole channel of a
/// palette in four registers. Only to be called where available() says so.
struct GIFWidePalette {
    /// Blue, green, red; each 64-byte aligned.
    using Channels = std::array<std::array<std::uint8_t, 256>, 3>;

    [[nodiscard]] static bool available() noexcept;
    static void paint(const Channels& channels, std::uint8_t* pixels,
                      std::span<const std::uint8_t> indices) noexcept;
    static void paintOver(const Channels& channels, std::uint8_t* pixels,
                          std::span<const std::uint8_t> indices, std::uint8_t transparent) noexcept;
};

}  // namespace kx
