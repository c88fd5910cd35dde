// SPDX-License-Identifier: MIT

#include <limits>

#include <KXFoundation/Platform/Graphics/NSStringDrawing.h>
#include <KXFoundation/UI/KXUIUtils.h>

namespace kx {

NSSize KXUIUtils::sizeWith(std::optional<std::string_view> text, const std::shared_ptr<NSFont>& font,
                           double maxWidth) {
    if (!text) return {};
    const NSSize limit{maxWidth, std::numeric_limits<double>::max()};
    return NSString_Drawing::boundingRectWithSize(*text, limit,
                                                  NSStringDrawingOptions::UsesLineFragmentOrigin, font)
        .size;
}

NSSize KXUIUtils::sizeWith(std::optional<std::string_view> text, const std::shared_ptr<NSFont>& font) {
    return sizeWith(text, font, std::numeric_limits<double>::max());
}

}  // namespace kx
