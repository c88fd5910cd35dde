// SPDX-License-Identifier: MIT
#pragma once

#include <string>
#include <string_view>

namespace kx {

/// An application's identifier, or a cache's namespace, as the name of one folder: '/', '%', white space,
/// control characters and a leading '.' become %XX, so that none leads out of the folder above. Private to
/// the library.
[[nodiscard]] std::string applicationFolder(std::string_view identifier);

}  // namespace kx
