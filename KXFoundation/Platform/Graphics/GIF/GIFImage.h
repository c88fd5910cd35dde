// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include <KXFoundation/Platform/Graphics/GIF/GIFCanvas.h>
#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/Result.h>

/// GIFs and bitmaps. Private to Graphics.
namespace kx {

[[nodiscard]] bool sniffGif(std::span<const std::byte> data);
/// A GIF as a still picture: its first frame on the canvas.
[[nodiscard]] Result<std::shared_ptr<NSBitmapImageRep>> decodeGif(std::span<const std::byte> data);

/// The bitmap's memory for a decoder; counts as a change.
[[nodiscard]] GIFPixels pixelsOf(NSBitmapImageRep& bitmap);

}  // namespace kx
