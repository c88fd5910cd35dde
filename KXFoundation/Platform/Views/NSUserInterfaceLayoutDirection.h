// SPDX-License-Identifier: MIT
#pragma once

namespace kx {

enum class NSUserInterfaceLayoutDirection { LeftToRight, RightToLeft };

}  // namespace kx
