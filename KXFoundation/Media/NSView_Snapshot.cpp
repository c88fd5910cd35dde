// SPDX-License-Identifier: MIT

#include <optional>

#include <KXFoundation/Media/NSView_Snapshot.h>
#include <KXFoundation/Platform/Graphics/GraphicsContext.h>
#include <KXFoundation/Platform/Graphics/NSAppearance.h>
#include <KXFoundation/Platform/Graphics/NSImage.h>
#include <KXFoundation/Platform/Runtime/Monitor.h>
#include <KXFoundation/Platform/Views/NSView.h>
#include <KXFoundation/Platform/Views/NSWindow.h>

namespace kx {

namespace {

void drawInto(const std::shared_ptr<NSBitmapImageRep>& bitmap, NSView& view) {
    const auto context = GraphicsContext::onBitmap(bitmap);
    const GraphicsContext::Current scope(*context);
    const GraphicsContext::SavedState state(*context);
    std::optional<ScopedAppearance> look;
    if (const auto window = view.window()) look.emplace(window->appearance());
    view.drawRect(*context, view.bounds());
}

}  // namespace

std::shared_ptr<NSImage> NSView_Snapshot::snapshot(const std::shared_ptr<NSView>& view) {
    if (!view) return nullptr;
    const Monitor held(*view);
    const auto bitmap = NSBitmapImageRep::bitmapWithSize(view->frame().size);
    if (!bitmap) return nullptr;
    bitmap->setColorSpaceName(NSCustomColorSpace);
    drawInto(bitmap, *view);
    return NSImage::imageWithSize(view->frame().size, [bitmap](NSRect) {
        GraphicsContext* context = GraphicsContext::current();
        if (!context) return false;
        const NSSize size{static_cast<double>(bitmap->pixelsWide()),
                          static_cast<double>(bitmap->pixelsHigh())};
        context->drawBitmap(*bitmap, {{}, size});
        return true;
    });
}

}  // namespace kx
