// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/Result.h>

/// WebP through libwebp, lossy and lossless, upright as its Exif orientation says; of an animation the first
/// frame.
namespace kx {

[[nodiscard]] bool sniffWebp(std::span<const std::byte> data);
[[nodiscard]] Result<std::shared_ptr<NSBitmapImageRep>> decodeWebp(std::span<const std::byte> data);

}  // namespace kx
