// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <memory>
#include <span>
#include <string>
#include <string_view>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class CGMutablePath;
class GlyphFont;
class GraphicsContext;
class NSColor;
class NSFont;

/// A piece of a line, all of it in one font; an absent one is the system font.
struct StyledText {
    std::string_view text;
    std::shared_ptr<NSFont> font;
};

/// Pieces of text set side by side as one line that is never broken: shaped, ordered for their scripts (a
/// text whose first strong letter is Arabic begins on the right), in glyphs of known places. Letters that a
/// font lacks come from the desktop's other fonts. Tabs and line ends count as spaces. Of a very long line
/// only as much is set as TextLayout sets.
///
/// Places are points from the start of the baseline; y grows downwards. A line belongs to the thread that
/// laid it out.
class KX_EXPORT TextLine {
  public:
    struct Glyph {
        std::uint32_t number;  ///< in its font
        NSPoint position;      ///< of the glyph's own origin
    };
    /// Glyphs of one font and one direction, from the left to the right.
    struct Run {
        std::shared_ptr<GlyphFont> font;
        std::size_t piece;  ///< which of the line's pieces they belong to
        std::size_t firstGlyph;
        std::size_t glyphCount;
        bool isRightToLeft;
    };

    [[nodiscard]] static std::shared_ptr<const TextLine> layOut(std::span<const StyledText> pieces);

    /// From the left to the right.
    [[nodiscard]] std::span<const Run> runs() const noexcept { return runs_; }
    [[nodiscard]] std::span<const Glyph> glyphsOf(const Run& run) const noexcept {
        return std::span(glyphs_).subspan(run.firstGlyph, run.glyphCount);
    }
    /// "DejaVu Sans Bold": the font that the glyphs come from.
    [[nodiscard]] std::string fontNameOf(const Run& run) const;

    [[nodiscard]] double width() const noexcept { return width_; }
    [[nodiscard]] double ascent() const noexcept { return ascent_; }  ///< above the baseline
    [[nodiscard]] double descent() const noexcept { return descent_; }

    /// Appends the outlines of the run's glyphs where they stand in the line.
    void addOutlinesOf(const Run& run, CGMutablePath& path) const;
    void drawRun(const Run& run, GraphicsContext& context, NSPoint baseline, const NSColor& color) const;

  private:
    friend class TextShaping;
    TextLine() = default;

    std::vector<Glyph> glyphs_;
    std::vector<Run> runs_;
    double width_ = 0;
    double ascent_ = 0;
    double descent_ = 0;
};

}  // namespace kx
