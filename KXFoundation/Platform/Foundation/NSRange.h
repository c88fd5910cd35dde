// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>

namespace kx {

/// A stretch of numbers.
struct NSRange {
    std::uint64_t location = 0;
    std::uint64_t length = 0;  ///< 0 where there is no answer

    bool operator==(const NSRange&) const = default;

    /// The first number behind it.
    [[nodiscard]] constexpr std::uint64_t end() const noexcept { return location + length; }
    /// Whether it lies among the numbers from 0 up to, but without, `count`.
    [[nodiscard]] constexpr bool isWithin(std::uint64_t count) const noexcept {
        return location <= count && length <= count - location;
    }
};

}  // namespace kx
