// SPDX-License-Identifier: MIT

#include <algorithm>
#include <cmath>

#include <KXFoundation/Platform/Views/LayerPresentation.h>

namespace kx {

NSRect LayerPresentation::moved(NSRect rect, NSSize size) const {
    if (rotation == 0) return rect.movedBy(offset);
    const NSPoint middle{size.width / 2, size.height / 2};
    const double x = rect.origin.x + rect.size.width / 2 - middle.x;
    const double y = rect.origin.y + rect.size.height / 2 - middle.y;
    const double cosine = std::cos(rotation);
    const double sine = std::sin(rotation);
    const double width = std::abs(cosine) * rect.size.width + std::abs(sine) * rect.size.height;
    const double height = std::abs(sine) * rect.size.width + std::abs(cosine) * rect.size.height;
    return NSRect(middle.x + cosine * x - sine * y - width / 2, middle.y + sine * x + cosine * y - height / 2,
                  width, height)
        .movedBy(offset);
}

}  // namespace kx
