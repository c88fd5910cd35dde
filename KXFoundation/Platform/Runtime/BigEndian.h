// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <span>

namespace kx {

/// The number whose bytes these are, the highest first; of more than eight bytes the last eight.
[[nodiscard]] inline std::uint64_t bigEndian(std::span<const std::byte> bytes) noexcept {
    std::uint64_t number = 0;
    for (const std::byte byte : bytes) number = number << 8 | std::to_integer<std::uint64_t>(byte);
    return number;
}

}  // namespace kx
