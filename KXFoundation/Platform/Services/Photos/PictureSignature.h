// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <KXFoundation/Platform/Runtime/FileSystem.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

/// Whether the file's contents begin as those of a picture that the library reads: PNG, JPEG, TIFF, GIF or
/// WebP; the name does not count. Unsupported if not. Private to Services.
[[nodiscard]] Result<void> checkPicture(FileSystem& files, const std::string& path);

}  // namespace kx
