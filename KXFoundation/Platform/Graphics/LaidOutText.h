// SPDX-License-Identifier: MIT
#pragma once

#include <memory>
#include <optional>
#include <vector>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Graphics/TextLayout.h>

typedef struct _cairo cairo_t;
typedef struct _PangoLayout PangoLayout;
typedef struct _PangoLayoutLine PangoLayoutLine;

namespace kx {

class TextContext;

/// A text whose lines are shaped and placed. Belongs to the thread that made it.
class LaidOutText {
  public:
    LaidOutText(const TextContext& context, const TextLayout& text);
    ~LaidOutText();
    LaidOutText(const LaidOutText&) = delete;
    LaidOutText& operator=(const LaidOutText&) = delete;

    [[nodiscard]] const TextMeasure& measure() const noexcept { return measure_; }
    /// Of the empty text in its font, which is given again.
    [[nodiscard]] const TextMeasure& emptyLine(const std::shared_ptr<NSFont>& font) const;
    /// Draws in the handle's source colour.
    void draw(cairo_t* cairo, NSPoint topLeft) const;

    /// The calling thread's laid out text for this one, made or remembered.
    static std::shared_ptr<const LaidOutText> of(const TextLayout& text);
    /// The measure of such a text, which is remembered for longer than the lines. The font is not absent.
    static TextMeasure measureOf(std::string_view text, const std::shared_ptr<NSFont>& font,
                                 const TextFlow& flow);

  private:
    struct Line {
        PangoLayoutLine* line;  // owned by layout_
        double width;
        double baseline;
        bool isRightToLeft;
    };
    void collectLines();
    [[nodiscard]] double indentOf(const Line& line) const noexcept;

    PangoLayout* layout_;
    TextFlow flow_;
    std::vector<Line> lines_;
    TextMeasure measure_;
    mutable std::optional<TextMeasure> emptyLine_;
};

}  // namespace kx
