// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// The text in Unicode's normalization form C: equal for two texts exactly if they are canonically
/// equivalent, as "é" in one code point and in two. What is no UTF-8 stays as it is, and so does
/// all that is not ASCII where the module for ICU is missing. Any thread.
[[nodiscard]] KX_EXPORT std::string canonicalText(std::string_view text);

}  // namespace kx
