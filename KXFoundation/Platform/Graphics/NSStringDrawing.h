// SPDX-License-Identifier: MIT
#pragma once

#include <cstdint>
#include <memory>
#include <string_view>

#include <KXFoundation/Platform/Foundation/NSGeometry.h>
#include <KXFoundation/Platform/Runtime/Export.h>

namespace kx {

class GraphicsContext;
class NSAttributedString;
class NSFont;

/// Names of attributes: an NSFont (absent: the system font), and an NSColor (absent: the text colour).
inline constexpr std::string_view NSFontAttributeName = "NSFont";
inline constexpr std::string_view NSForegroundColorAttributeName = "NSColor";

enum class NSStringDrawingOptions : std::uint8_t {
    None = 0,                    ///< lines end at line ends only; (0, 0) is on the first one's baseline
    UsesLineFragmentOrigin = 1,  ///< lines break at the width; (0, 0) is the top left corner of the first one
};

/// How much room a plain text takes. Any thread; what was measured lately is remembered by text and font.
struct KX_EXPORT NSString_Drawing {
    NSString_Drawing() = delete;

    /// The rectangle around the text's lines, in points, not rounded: as wide as the widest line, as high as
    /// all of them. `size` limits the width where it is above 0 and below 1,000,000; its height limits
    /// nothing. An absent font is the system font. An empty text is as high as one line.
    [[nodiscard]] static NSRect boundingRectWithSize(std::string_view text, NSSize size,
                                                     NSStringDrawingOptions options,
                                                     const std::shared_ptr<NSFont>& font);
};

/// A text with attributes set as one line that is never broken (see TextLine).
struct KX_EXPORT NSAttributedString_Drawing {
    NSAttributedString_Drawing() = delete;

    /// The line's advance and the heights of its fonts.
    [[nodiscard]] static NSSize size(const NSAttributedString& text);
    /// Draws each run in its own font and colour, with the line's top left corner at the point.
    static void drawAtPoint(const NSAttributedString& text, GraphicsContext& context, NSPoint topLeft);
};

}  // namespace kx
