#pragma once

#include <memory>

#include <pango/pango.h>

namespace kx {

class NSFont;

struct FontDescriptionDeleter {
    void operator()(PangoFontDescription* description) const { pango_font_description_free(description); }
};
using FontDescription = std::unique_ptr<PangoFontDescription, FontDescriptionDeleter>;

/// The font as Pango is asked for it; one pixel is one point.
[[nodiscard]] FontDescription describedFont(const NSFont& font);

}  // namespace kx
