// SPDX-License-Identifier: MIT
#pragma once

#include <array>
#include <cstddef>
#include <span>

namespace kx {

/// The MD5 digest of the bytes (RFC 1321). It tells contents apart; it protects nothing. Any thread;
/// allocates nothing. Private to the library.
[[nodiscard]] std::array<std::byte, 16> md5(std::span<const std::byte> bytes) noexcept;

}  // namespace kx
