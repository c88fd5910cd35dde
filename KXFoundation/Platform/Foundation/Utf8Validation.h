// SPDX-License-Identifier: MIT
#pragma once

#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Whether the text is UTF-8 from its first byte to its last: no overlong form, no surrogate, nothing beyond
/// U+10FFFF, nothing cut off. Four bytes a nanosecond and more where the processor has AVX2. Private to
/// Foundation.
[[nodiscard]] KX_EXPORT bool isUtf8(std::string_view text) noexcept;

/// The same one character at a time, for any processor.
[[nodiscard]] KX_EXPORT bool isUtf8ByCharacters(std::string_view text) noexcept;

}  // namespace kx
