// SPDX-License-Identifier: MIT

#include <KXFoundation/Media/NSImage_Mask.h>
#include <KXFoundation/Platform/Graphics/Filters/ColorControls.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSColor.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/UI/KXUIUtils.h>

namespace kx {

namespace {

constexpr ColorControls kGrey{.brightness = 0, .saturation = 0, .contrast = 0.5};

std::shared_ptr<NSImage> imageOf(std::shared_ptr<NSBitmapImageRep> bitmap, NSSize size) {
    auto image = NSImage::initWithSize(bitmap ? size : NSSize());
    image->addRepresentation(std::move(bitmap));
    return image;
}

/// The colour where the bitmap is opaque.
std::shared_ptr<NSBitmapImageRep> coloured(const std::shared_ptr<NSBitmapImageRep>& shape,
                                           const NSColor& color) {
    auto bitmap = NSBitmapImageRep::bitmapWithPixels(shape->pixelsWide(), shape->pixelsHigh());
    const auto context = GraphicsContext::onBitmap(bitmap);
    if (!context) return nullptr;
    bitmap->setColorSpaceName(NSCalibratedRGBColorSpace);
    const GraphicsContext::SavedState state(*context);
    const NSRect all(0, 0, shape->pixelsWide(), shape->pixelsHigh());
    context->clipToMask(all, shape);
    context->fill(all, color);
    return bitmap;
}

}  // namespace

std::shared_ptr<NSImage> NSImage_Mask::imageContentWithColor(const std::shared_ptr<NSImage>& image,
                                                             const std::shared_ptr<NSColor>& color) {
    if (!image || !color) return nullptr;
    const NSSize size = KXUIUtils::getNotZeroCGSize(image->size());
    const auto shape = image->drawnBitmap(size, size);
    return imageOf(shape ? coloured(shape, *color) : nullptr, size);
}

std::shared_ptr<NSImage> NSImage_Mask::grayImage(const std::shared_ptr<NSImage>& image) {
    if (!image) return nullptr;
    const auto bitmap = image->largestBitmap();
    if (!bitmap) return imageOf(nullptr, {});
    auto grey = NSBitmapImageRep::bitmapWithPixels(bitmap->pixelsWide(), bitmap->pixelsHigh());
    if (grey) applyColorControls(*bitmap, *grey, kGrey);
    return grey ? NSImage::initWithBitmap(grey) : imageOf(nullptr, {});
}

std::shared_ptr<NSImage> NSImage_Mask::fixImageSizeWithWidth(const std::shared_ptr<NSImage>& image,
                                                             double width) {
    if (!image || image->size().width == width) return image;
    if (width == 0) width = 1;
    const NSSize extent{width, width * (image->size().height / image->size().width)};
    const NSSize size = KXUIUtils::getNotZeroCGSize(extent);
    return imageOf(image->drawnBitmap(size, extent), size);
}

}  // namespace kx
