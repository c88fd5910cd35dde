// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <string>
#include <string_view>

namespace kx {

// Pango counts in 1/1024 point in 32 bits, so 2,097,151 points are the end of its world; half of that is
// ours.
inline constexpr double kWidestLine = 1'000'000;

/// How many bytes of a text of that size are set, where a line has `room` points left.
[[nodiscard]] std::size_t letterLimit(double pointSize, double room = kWidestLine) noexcept;

/// The text that is set: whole characters up to the limit, bytes that are no UTF-8 as U+FFFD, and no more
/// than 256 combining marks on one letter.
[[nodiscard]] std::string usableText(std::string_view text, std::size_t limit);

}  // namespace kx
