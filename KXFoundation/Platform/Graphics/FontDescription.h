// SPDX-License-Identifier: MIT
#pragma once

#include <memory>

typedef struct _PangoFontDescription PangoFontDescription;

namespace kx {

class NSFont;

struct FontDescriptionDeleter {
    void operator()(PangoFontDescription* description) const;
};
using FontDescription = std::unique_ptr<PangoFontDescription, FontDescriptionDeleter>;

/// The font as Pango is asked for it; one pixel is one point.
[[nodiscard]] FontDescription describedFont(const NSFont& font);

}  // namespace kx
