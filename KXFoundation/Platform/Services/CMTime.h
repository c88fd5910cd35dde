// SPDX-License-Identifier: MIT
#pragma once

#include <cmath>
#include <compare>
#include <cstdint>
#include <limits>

namespace kx {

/// A point in a recording, or a length of it: `value` parts of a second that has `timescale` of them. Exact,
/// where seconds in a double are not. Not valid (a timescale of 0) where there is no such time.
struct CMTime {
    std::int64_t value = 0;
    std::int32_t timescale = 0;

    [[nodiscard]] constexpr bool isValid() const noexcept { return timescale > 0; }
    bool operator==(const CMTime&) const = default;
};

/// Not valid for a timescale of 0 or less.
[[nodiscard]] constexpr CMTime CMTimeMake(std::int64_t value, std::int32_t timescale) noexcept {
    return timescale > 0 ? CMTime{value, timescale} : CMTime{};
}

/// The multiple of 1/timescale that is nearest: 0.1 with 10 gives 1/10. Not valid for a timescale of 0 or
/// less, or seconds that are no number or too many to be counted.
[[nodiscard]] inline CMTime CMTimeMakeWithSeconds(double seconds, std::int32_t timescale) noexcept {
    const double value = std::round(seconds * timescale);
    const bool fits = std::abs(value) < 0x1p63;  // false for NaN
    return timescale > 0 && fits ? CMTime{static_cast<std::int64_t>(value), timescale} : CMTime{};
}

/// NaN for a time that is not valid.
[[nodiscard]] constexpr double CMTimeGetSeconds(CMTime time) noexcept {
    if (!time.isValid()) return std::numeric_limits<double>::quiet_NaN();
    return static_cast<double>(time.value) / time.timescale;
}

/// By the moment, whatever the timescales: 1/10 and 10/100 are equivalent. Unordered if one is not valid.
[[nodiscard]] constexpr std::partial_ordering CMTimeCompare(CMTime a, CMTime b) noexcept {
    if (!a.isValid() || !b.isValid()) return std::partial_ordering::unordered;
    __extension__ using Wide = __int128;
    return Wide{a.value} * b.timescale <=> Wide{b.value} * a.timescale;
}

}  // namespace kx
