// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>

namespace kx {

/// The picture in the encoded bytes, upright, reduced in its own proportions until it fits into so many
/// pixels; as it is if it fits. A JPEG is unpacked no further than that needs. Fails as decodeImage does. Any
/// thread.
[[nodiscard]] KX_EXPORT Result<std::shared_ptr<NSBitmapImageRep>> decodeThumbnail(
    std::span<const std::byte> data, std::uint32_t mostWide, std::uint32_t mostHigh);

}  // namespace kx
