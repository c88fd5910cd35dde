// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Views/NSImageView.h>

namespace kx {

namespace {

double proportionalScale(NSSize image, NSSize room, double most) {
    return std::min({most, room.width / image.width, room.height / image.height});
}

NSSize shownSize(NSSize image, NSSize room, NSImageScaling scaling) {
    constexpr double kAny = std::numeric_limits<double>::infinity();
    double scale = 1;
    switch (scaling) {
        case NSImageScaling::AxesIndependently:
            return room;
        case NSImageScaling::None:
            break;
        case NSImageScaling::ProportionallyDown:
            scale = proportionalScale(image, room, 1);
            break;
        case NSImageScaling::ProportionallyUpOrDown:
            scale = proportionalScale(image, room, kAny);
            break;
    }
    return {image.width * scale, image.height * scale};
}

}  // namespace

std::shared_ptr<NSImageView> NSImageView::imageViewWithImage(std::shared_ptr<NSImage> image) {
    auto view = make<NSImageView>(image ? NSRect({}, image->size()) : NSRect());
    view->setImage(std::move(image));
    return view;
}

void NSImageView::setImage(std::shared_ptr<NSImage> image) {
    change(image_, std::move(image));
}
void NSImageView::setImageScaling(NSImageScaling scaling) {
    change(scaling_, scaling);
}

NSSize NSImageView::intrinsicContentSize() const {
    return image_ ? image_->size() : NSSize{kNoIntrinsicMetric, kNoIntrinsicMetric};
}

void NSImageView::drawRect(GraphicsContext& context, NSRect) {
    if (!image_ || NSRect({}, image_->size()).isEmpty()) return;
    const NSSize room = bounds().size;
    const NSSize size = shownSize(image_->size(), room, scaling_);
    image_->drawInRect(context.pixelAligned(
        {(room.width - size.width) / 2, (room.height - size.height) / 2, size.width, size.height}));
}

}  // namespace kx
