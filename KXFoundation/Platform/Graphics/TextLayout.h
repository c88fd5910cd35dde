// SPDX-License-Identifier: MIT
#pragma once

#include <cstddef>
#include <cstdint>
#include <limits>
#include <memory>
#include <string>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Graphics/NSTextAlignment.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class NSFont;

/// Which way a text's lines run. Natural: each paragraph follows its own first strong letter.
enum class WritingDirection : std::uint8_t { Natural, LeftToRight, RightToLeft };

enum class LineBreakMode : std::uint8_t {
    WordWrap,      ///< at words, inside one only where it alone is too wide
    TruncateTail,  ///< an ellipsis at the end of what does not fit
    Clip,          ///< lines end at line ends only and may be wider than the width
};

/// How a text flows into its space.
struct TextFlow {
    double width = std::numeric_limits<double>::infinity();  ///< points
    NSTextAlignment alignment = NSTextAlignment::Natural;
    WritingDirection direction = WritingDirection::Natural;
    LineBreakMode lineBreak = LineBreakMode::WordWrap;
    std::uint32_t maximumLines =
        0;  ///< with an ellipsis where a text is cut; 0: no limit. TruncateTail alone: 1
    bool operator==(const TextFlow&) const = default;
};

struct TextMeasure {
    NSSize size;               ///< of the lines: the widest one, and all their heights
    double firstBaseline = 0;  ///< below the top
    std::uint32_t lineCount = 0;
    bool isTruncated = false;
    bool isRightToLeft = false;  ///< of the first line
};

/// A text set in a font, shaped and ordered for its scripts; letters that the font lacks come from the
/// desktop's other fonts. A plain value: cheap to make and copy, usable on any thread. What was measured is
/// remembered per thread by text, font and flow, so asking again costs a look-up.
///
/// Points are the same at every scale: glyphs are never hinted. Bytes that are no UTF-8 show as U+FFFD. Of a
/// very long text only the first 64 KiB are set (less above 15 points: 1,000,000 divided by the size).
class KX_EXPORT TextLayout {
  public:
    /// An absent font is the system font.
    TextLayout(std::string_view text, std::shared_ptr<NSFont> font, const TextFlow& flow = {});

    [[nodiscard]] const std::string& text() const noexcept { return text_; }
    [[nodiscard]] const std::shared_ptr<NSFont>& font() const noexcept { return font_; }
    [[nodiscard]] const TextFlow& flow() const noexcept { return flow_; }

    [[nodiscard]] TextMeasure measure() const;
    [[nodiscard]] NSSize size() const { return measure().size; }

  private:
    std::string text_;
    std::shared_ptr<NSFont> font_;
    TextFlow flow_;
};

}  // namespace kx
