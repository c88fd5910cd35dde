// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <span>
#include <string>
#include <vector>

#include <KXFoundation/Platform/Graphics/TextLine.h>

typedef struct _PangoItem PangoItem;
typedef struct hb_buffer_t hb_buffer_t;

namespace kx {

class ThreadTexts;

/// Turns the pieces of a line into glyphs. Most lines are printable ASCII in a font that holds all of it:
/// those are given to HarfBuzz piece by piece. All others take the whole road through Pango: directions,
/// scripts, fonts that fill in for the one asked for. Both give the same glyphs at the same places.
class TextShaping {
  public:
    TextShaping(ThreadTexts& texts, TextLine& line, std::span<const StyledText> pieces)
        : texts_(texts), line_(line), pieces_(pieces) {}

    void run();

  private:
    [[nodiscard]] bool isSimple();
    void shapeSimply();
    void shapeSimplePiece(std::size_t piece, hb_buffer_t* buffer);

    void shapeFully();
    void shapeItem(PangoItem& item, const std::string& text);
    [[nodiscard]] std::size_t pieceAt(std::size_t offset) const;

    void beginRun(std::shared_ptr<GlyphFont> font, std::size_t piece, bool isRightToLeft);
    void add(std::uint32_t glyph, double dx, double dy, double advance);

    ThreadTexts& texts_;
    TextLine& line_;
    std::span<const StyledText> pieces_;
    std::vector<std::shared_ptr<GlyphFont>> fonts_;  // of the pieces
    std::vector<std::size_t> ends_;                  // of the pieces in the joined text
};

}  // namespace kx
