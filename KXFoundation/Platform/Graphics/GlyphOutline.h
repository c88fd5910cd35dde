// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>

typedef struct _cairo_scaled_font cairo_scaled_font_t;
typedef struct hb_font_t hb_font_t;

namespace kx {

class CGMutablePath;

/// The glyph's outline as the font file has it, in its own lines and curves. The font's scale is 1024 to the
/// point.
[[nodiscard]] std::shared_ptr<const CGMutablePath> readOutline(hb_font_t* font, std::uint32_t glyph);

/// The outline as it is drawn, with the slant and weight that the engine gives to a font that lacks them;
/// curves are all cubic. Takes longer.
[[nodiscard]] std::shared_ptr<const CGMutablePath> traceOutline(cairo_scaled_font_t* font,
                                                                std::uint32_t glyph);

}  // namespace kx
