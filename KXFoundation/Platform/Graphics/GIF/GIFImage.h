#pragma once

#include <cstddef>
#include <memory>
#include <span>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/Result.h>

/// A GIF as a still picture: its first frame on the canvas. Private to Graphics.
namespace kx {

[[nodiscard]] bool sniffGif(std::span<const std::byte> data);
[[nodiscard]] Result<std::shared_ptr<NSBitmapImageRep>> decodeGif(std::span<const std::byte> data);

}  // namespace kx
