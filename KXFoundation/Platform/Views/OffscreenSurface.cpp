// SPDX-License-Identifier: MIT

#include <algorithm>

#include <KXFoundation/Platform/Graphics/NSImageRep.h>
#include <KXFoundation/Platform/Graphics/PngCodec.h>
#include <KXFoundation/Platform/Views/OffscreenSurface.h>

namespace kx {

std::shared_ptr<NSBitmapImageRep> WindowSurface::lentPixels(std::uint32_t, std::uint32_t) {
    return nullptr;
}

OffscreenSurface::OffscreenSurface(NSRect frame, double scale, WindowSystem::Handler handler,
                                   OffscreenPixels pixels)
    : frame_(frame), scale_(scale), handler_(std::move(handler)), pixels_(pixels) {}

std::shared_ptr<NSBitmapImageRep> OffscreenSurface::lentPixels(std::uint32_t wide, std::uint32_t high) {
    if (pixels_ == OffscreenPixels::Copied) return nullptr;
    bitmap_ = NSBitmapImageRep::bitmapWithPixels(wide, high);
    return bitmap_;
}

void OffscreenSurface::present(const NSBitmapImageRep& bitmap, std::span<const PixelRect> changed) {
    lastChanged_.assign(changed.begin(), changed.end());
    if (&bitmap == bitmap_.get()) return;
    const std::uint32_t wide = bitmap.pixelsWide();
    if (!bitmap_ || bitmap_->pixelsWide() != wide || bitmap_->pixelsHigh() != bitmap.pixelsHigh()) {
        bitmap_ = NSBitmapImageRep::bitmapWithPixels(wide, bitmap.pixelsHigh());
    }
    for (const PixelRect& rect : changed) {
        for (std::uint32_t y = rect.y; y < rect.y + rect.height; ++y) {
            const std::size_t start = std::size_t{y} * wide + rect.x;
            std::ranges::copy(bitmap.pixels().subspan(start, rect.width),
                              bitmap_->pixels().begin() + std::ptrdiff_t(start));
        }
    }
}

void OffscreenSurface::setFrame(NSRect frame) {
    const bool resized = frame.size != frame_.size;
    frame_ = frame;
    if (resized) send(SurfaceResized());
}

void OffscreenSurface::setScale(double scale) {
    scale_ = scale;
    send(SurfaceResized());
}

void OffscreenSurface::activate() {
    send(SurfaceFocusChanged{true});
}

void OffscreenSurface::click(NSPoint point) {
    const auto handler = handler_;  // the window may close, and take this surface with it
    handler(NSEvent{.type = NSEventType::MouseDown, .locationInWindow = point, .clickCount = 1});
    handler(NSEvent{.type = NSEventType::MouseUp, .locationInWindow = point, .clickCount = 1});
}

Result<std::vector<std::byte>> OffscreenSurface::png() const {
    if (!bitmap_) return Error{ErrorKind::Unsupported, 0, "OffscreenSurface::png"};
    return encodePng(*bitmap_);
}

std::shared_ptr<WindowSurface> OffscreenWindowSystem::makeSurface(NSRect frame, Handler handler) {
    return std::make_shared<OffscreenSurface>(frame, scale_, std::move(handler), pixels_);
}

PortSlot<WindowSystem>& WindowSystem::slot() {
    static constinit PortSlot<WindowSystem> slot;
    return slot;
}

}  // namespace kx
