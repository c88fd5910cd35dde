// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

/// Whether the file's contents begin as those of a picture: PNG, JPEG, TIFF, GIF, WebP, HEIF, AVIF, BMP or
/// JPEG XL; the name does not count. Unsupported if not. Private to Services.
[[nodiscard]] Result<void> checkPicture(FileSystem& files, const std::string& path);

}  // namespace kx
