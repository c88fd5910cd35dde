// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

/// Any bytes as the name of one file or folder that stays where it is put and can be seen: what is no UTF-8
/// becomes U+FFFD; slashes, backslashes and control characters become "_", as does a dot in front; blanks at
/// either end go away; "Untitled" stands for nothing. At most 200 bytes, cut between characters and before
/// the extension.
[[nodiscard]] KX_EXPORT std::string photoFileName(std::string_view text);

/// The name with a number before its extension: "a.jpg" and 2 give "a 2.jpg". 1 gives the name itself.
[[nodiscard]] KX_EXPORT std::string numberedFileName(std::string_view name, unsigned number);

}  // namespace kx
