// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>

/// Premultiplied pixels whose colours are light (IEC 61966-2-1, the sRGB curve) instead of encoded values, as
/// words: 16384 is full light and full cover. Private to Graphics; any thread.
namespace kx {

void toLinearLight(const std::uint32_t* pixels, std::size_t count, std::int16_t* words);

/// Words that no picture has (negative, colour above alpha) become the nearest one that it can have.
void fromLinearLight(const std::int16_t* words, std::size_t count, std::uint32_t* pixels);

}  // namespace kx
