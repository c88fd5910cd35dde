// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <optional>
#include <string_view>

namespace kx {

/// The integer setting of that name in the property that an XSETTINGS manager keeps (protocol version 0.5);
/// none if there is none, or the property breaks off before it.
[[nodiscard]] std::optional<std::int32_t> xsettingsInteger(std::string_view property,
                                                           std::string_view wanted);

}  // namespace kx
