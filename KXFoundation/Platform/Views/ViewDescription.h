// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSView;

/// The view and everything in it, a line each: its description, indented by two spaces for each level. Main
/// thread.
[[nodiscard]] KX_EXPORT std::string describeTree(const NSView& view);

}  // namespace kx
