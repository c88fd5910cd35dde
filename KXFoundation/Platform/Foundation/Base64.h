// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <optional>
#include <span>
#include <string>
#include <string_view>
#include <vector>

/// Base64 (RFC 4648, section 4), as property lists hold data. Private to Foundation.
namespace kx {

[[nodiscard]] std::string base64(std::span<const std::byte> bytes);

/// The bytes; white space between the digits is skipped, the padding may be missing. Absent for anything
/// else.
[[nodiscard]] std::optional<std::vector<std::byte>> fromBase64(std::string_view text);

}  // namespace kx
