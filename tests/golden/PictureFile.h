// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>

namespace kx::testing {

/// Writes an opaque picture as a PNG: slower and smaller than the library does, as it is kept in the
/// repository. False if it cannot.
bool writeSmallPicture(const NSBitmapImageRep& picture, const std::string& path);

}  // namespace kx::testing
