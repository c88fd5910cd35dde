// SPDX-License-Identifier: MIT

#include <pango/pango.h>

#include <KXFoundation/Platform/Graphics/FontDescription.h>
#include <KXFoundation/Platform/Graphics/FontFace.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>

namespace kx {

void FontDescriptionDeleter::operator()(PangoFontDescription* description) const {
    pango_font_description_free(description);
}

FontDescription describedFont(const NSFont& font) {
    const FontFace& face = font.face();
    FontDescription description(pango_font_description_new());
    pango_font_description_set_family(description.get(), face.family.c_str());
    pango_font_description_set_weight(description.get(), static_cast<PangoWeight>(face.weight));
    pango_font_description_set_style(description.get(),
                                     face.italic ? PANGO_STYLE_ITALIC : PANGO_STYLE_NORMAL);
    pango_font_description_set_absolute_size(description.get(), font.pointSize() * PANGO_SCALE);
    return description;
}

}  // namespace kx
