// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <span>
#include <vector>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>

/// PNG through libpng. Pixels are sRGB; 16-bit channels are rounded to 8.
namespace kx {

[[nodiscard]] bool sniffPng(std::span<const std::byte> data);
[[nodiscard]] Result<std::shared_ptr<NSBitmapImageRep>> decodePng(std::span<const std::byte> data);

/// Written for speed rather than size (no filter, low level). Colours under an alpha of 0 are lost, others
/// come back to the same premultiplied values. Any thread.
[[nodiscard]] KX_EXPORT Result<std::vector<std::byte>> encodePng(const NSBitmapImageRep& bitmap);

}  // namespace kx
