// SPDX-License-Identifier: MIT

#include <KXFoundation/Platform/Graphics/LaidOutText.h>
#include <KXFoundation/Platform/Graphics/NSFont.h>
#include <KXFoundation/Platform/Graphics/TextLayout.h>

namespace kx {

TextLayout::TextLayout(std::string_view text, std::shared_ptr<NSFont> font, const TextFlow& flow)
    : text_(text), font_(font ? std::move(font) : NSFont::systemFontOfSize(0)), flow_(flow) {}

TextMeasure TextLayout::measure() const {
    return LaidOutText::measureOf(text_, font_, flow_);
}

}  // namespace kx
