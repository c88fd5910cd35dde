// SPDX-License-Identifier: MIT
#pragma once

#include <string>

#include <KXFoundation/Platform/Runtime/FileSystem.h>

/// Reading what the kernel shows below /sys and /proc. Such files do not know their size.
namespace kx {

/// The contents, or the first 64 KiB of more.
KX_EXPORT Result<std::string> readSystemFile(FileSystem& files, const std::string& path);

/// The contents of a file of one line, without the line's end; empty if it cannot be read.
[[nodiscard]] KX_EXPORT std::string readSystemLine(FileSystem& files, const std::string& path);

}  // namespace kx
