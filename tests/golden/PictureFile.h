#pragma once

#include <memory>
#include <string>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>

namespace kx::testing {

/// None if there is no such picture.
[[nodiscard]] std::shared_ptr<NSBitmapImageRep> readPicture(const std::string& path);

/// Writes an opaque picture as a PNG: slower and smaller than the library does, as it is kept in the
/// repository. False if it cannot.
bool writePicture(const NSBitmapImageRep& picture, const std::string& path);

}  // namespace kx::testing
