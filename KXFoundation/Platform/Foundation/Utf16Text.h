// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

/// Text as UTF-16, for rules that count its units.
namespace kx {

/// The UTF-8 text; each byte that is none becomes U+FFFD. Any thread.
[[nodiscard]] KX_EXPORT std::u16string utf16Of(std::string_view text);

/// In upper case, by Unicode's full mapping for no language in particular ("ß" becomes two units);
/// only the ASCII letters where the module for ICU is missing. Any thread.
[[nodiscard]] KX_EXPORT std::u16string upperCased(std::u16string_view text);

/// Tab, a line break (U+000A to U+000D, U+0085, U+2028, U+2029) or a separator of Unicode's category Zs.
[[nodiscard]] constexpr bool isWhitespaceOrNewline(char16_t unit) noexcept {
    return (unit >= u'\t' && unit <= u'\r') || unit == u' ' || unit == 0x85 || unit == 0xA0 ||
           unit == 0x1680 || (unit >= 0x2000 && unit <= 0x200A) || unit == 0x2028 || unit == 0x2029 ||
           unit == 0x202F || unit == 0x205F || unit == 0x3000;
}

/// The text without such units at its ends; a view into it.
[[nodiscard]] KX_EXPORT std::u16string_view trimmed(std::u16string_view text) noexcept;

}  // namespace kx
