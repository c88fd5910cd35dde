// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

/// UTF-8 one code point at a time. Private to Foundation and to the programs beside it.
namespace kx {

inline constexpr char32_t kReplacementCharacter = 0xFFFD;

/// Takes the first code point off a text that is not empty. Of bytes that are no UTF-8 (overlong forms and
/// surrogates included) it takes one and answers kReplacementCharacter.
char32_t takeCodePoint(std::string_view& text) noexcept;

/// Appends the code point as UTF-8; a surrogate or a number beyond U+10FFFF as kReplacementCharacter.
KX_EXPORT void appendCodePoint(std::string& text, char32_t codePoint);

}  // namespace kx
