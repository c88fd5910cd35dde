// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Runtime/Export.h>
#include <KXFoundation/Platform/Runtime/Result.h>
#include <KXFoundation/Platform/Runtime/Value.h>

namespace kx {

/// A format that pictures can be read from. The table of them is in ImageDecoder.cpp.
struct ImageFormat {
    std::string_view name;
    /// Whether the bytes begin like this format; never more than a look at the first few.
    bool (*sniff)(std::span<const std::byte> data);
    Result<std::shared_ptr<NSBitmapImageRep>> (*decode)(std::span<const std::byte> data);
};

/// The format that the bytes begin like; none if there is none.
[[nodiscard]] KX_EXPORT const ImageFormat* imageFormatOf(std::span<const std::byte> data);

/// The picture in the encoded bytes; its format is found from the bytes themselves. Unsupported if none fits,
/// TooLarge beyond NSBitmapImageRep::pixelLimit() (before anything is allocated), Corrupt for damaged data.
/// Any thread.
[[nodiscard]] KX_EXPORT Result<std::shared_ptr<NSBitmapImageRep>> decodeImage(
    std::span<const std::byte> data);
/// The same from a data value (Unsupported for any other), which the bitmap keeps as its encodedData().
[[nodiscard]] KX_EXPORT Result<std::shared_ptr<NSBitmapImageRep>> decodeImageKeepingData(Value data);

/// The whole file as a data value, with no copy but that; TooLarge beyond `limit` bytes, before anything is
/// read. Any thread.
[[nodiscard]] KX_EXPORT Result<Value> readImageFile(const std::string& path, std::uint64_t limit);

}  // namespace kx
