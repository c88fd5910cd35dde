// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>

/// TIFF through libtiff, which lies in a module opened for the first file. Unsupported, after one log line,
/// where that is missing.
namespace kx {

[[nodiscard]] bool sniffTiff(std::span<const std::byte> data);
/// The file's first picture, upright.
[[nodiscard]] Result<std::shared_ptr<NSBitmapImageRep>> decodeTiff(std::span<const std::byte> data);

/// Without loss, but for colours under an alpha of 0. Any thread.
[[nodiscard]] KX_EXPORT Result<std::vector<std::byte>> encodeTiff(const NSBitmapImageRep& bitmap);

}  // namespace kx
