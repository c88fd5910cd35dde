// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string>

typedef struct _cairo_scaled_font cairo_scaled_font_t;
typedef struct _PangoFont PangoFont;
typedef struct hb_font_t hb_font_t;

namespace kx {

class CGMutablePath;

/// One font file at one size, as a thread's text engine holds it. Belongs to that thread.
class GlyphFont {
  public:
    explicit GlyphFont(PangoFont* font);
    ~GlyphFont();
    GlyphFont(const GlyphFont&) = delete;
    GlyphFont& operator=(const GlyphFont&) = delete;

    /// Different for every font made in this process.
    [[nodiscard]] std::uint32_t number() const noexcept { return number_; }
    [[nodiscard]] double ascent() const noexcept { return ascent_; }
    [[nodiscard]] double descent() const noexcept { return descent_; }  ///< above 0 below the baseline
    /// The installed family and style: "DejaVu Sans Bold".
    [[nodiscard]] std::string name() const;

    /// The glyph's outline, with the slant and weight that the engine gives to a font that lacks them. Empty
    /// for a glyph that shows nothing or is a picture.
    [[nodiscard]] std::shared_ptr<const CGMutablePath> makeOutline(std::uint32_t glyph) const;

    /// Shapes printable ASCII as the engine would, several times as fast; nullptr if the font is one that the
    /// engine alters (slanted or emboldened by force, variable, with features of its own) or lacks a letter.
    [[nodiscard]] hb_font_t* asciiShaper() const noexcept { return holdsAscii_ ? plain_ : nullptr; }
    [[nodiscard]] cairo_scaled_font_t* scaledFont() const noexcept { return scaledFont_; }

  private:
    PangoFont* font_;
    std::uint32_t number_;
    cairo_scaled_font_t* scaledFont_ = nullptr;  // owned by font_
    hb_font_t* plain_ = nullptr;  // over the file itself; none for a font that the engine alters
    bool hasOutlines_ = false;
    bool holdsAscii_ = false;
    double ascent_ = 0;
    double descent_ = 0;
};

}  // namespace kx
