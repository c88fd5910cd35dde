// SPDX-License-Identifier: MIT
#pragma once

#include <compare>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Compares two texts as the platform does with its numeric option: where both have decimal digits, the whole
/// run of them by its value ("1.9" is before "1.10", "1.01" equals "1.1"), everything else character by
/// character. A text that goes on where the other one ends is the later one. Digits are those of ASCII;
/// characters are in the order of their code points. Any thread; allocates nothing.
[[nodiscard]] KX_EXPORT std::strong_ordering numericCompare(std::string_view a, std::string_view b) noexcept;

}  // namespace kx
